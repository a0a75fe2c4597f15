#include "language/window_text.h"

#include <string>

#include "language/translation_catalogue.h"

namespace nvsupport {
namespace {

constexpr int windowTextSize = 5000;

const unsigned char* MultibyteText(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

}  // namespace

BOOL CALLBACK TranslateWindowText(HWND window, LPARAM) {
  char text[windowTextSize];
  if (GetWindowTextA(window, text, windowTextSize) <= 0) return 1;
  const std::string translated(Translate(text));
  if (_mbscmp(MultibyteText(text), MultibyteText(translated.c_str())) != 0) SetWindowTextA(window, translated.c_str());
  return 1;
}

}  // namespace nvsupport
