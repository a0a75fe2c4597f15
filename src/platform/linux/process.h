// The process that the library is a guest in.
#ifndef NVSUPPORT_PLATFORM_LINUX_PROCESS_H
#define NVSUPPORT_PLATFORM_LINUX_PROCESS_H

#include <string_view>

#include "types.h"

DWORD GetCurrentProcessId();
// Writes the text to standard error and ends the process at once.
[[noreturn]] void FatalAppExitA(UINT action, LPCSTR text);

namespace platform {

// At once, so that the lines of several threads do not mix. Nobody need read them.
void WriteToStandardError(std::string_view text);

}  // namespace platform

#endif
