#include "ui/message.h"

#include "language/translation_catalogue.h"
#include "storage/format_text.h"

namespace nvsupport {

void SetMessageCaption(const std::string& text) {
  messageCaption = text;
}

int ShowMessage(HWND parent, UINT type, const std::string& text) {
  return MessageBoxA(parent, std::string(Translate(text)).c_str(), messageCaption.c_str(), type);
}

int ShowMessageFormat(HWND parent, UINT type, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int button = ShowMessageArgs(parent, type, format, arguments);
  va_end(arguments);
  return button;
}

int ShowMessageArgs(HWND parent, UINT type, const std::string& format, std::va_list arguments) {
  const std::string translated = TranslateFormat(format);
  const std::string text = FormatTextArgs(translated.c_str(), arguments);
  return MessageBoxA(parent, text.c_str(), messageCaption.c_str(), type);
}

}  // namespace nvsupport
