// The process that the library is a guest in.
#ifndef NVSUPPORT_PLATFORM_LINUX_PROCESS_H
#define NVSUPPORT_PLATFORM_LINUX_PROCESS_H

#include "types.h"

DWORD GetCurrentProcessId();
// Writes the text to standard error and ends the process at once.
[[noreturn]] void FatalAppExitA(UINT action, LPCSTR text);

#endif
