// Message boxes under the library's one caption, with translated texts.
#ifndef NVSUPPORT_UI_MESSAGE_H
#define NVSUPPORT_UI_MESSAGE_H

#include <cstdarg>
#include <cstdint>
#include <string>

#include "platform/platform.h"

namespace nvsupport {

extern std::string& messageCaption;

void SetMessageCaption(const std::string& text);

// parent: the owner, may be null. type: MB_ values. text, format: in English; the catalogue's translation is shown.
// Each function returns the id of the button.
int ShowMessage(HWND parent, UINT type, const std::string& text);
[[gnu::format(printf, 3, 4)]] int ShowMessageFormat(HWND parent, UINT type, const char* format, ...);
int ShowMessageArgs(HWND parent, UINT type, const std::string& format, std::va_list arguments);

}  // namespace nvsupport

#endif
