// Module loader and the calling thread's last error.
#ifndef NVSUPPORT_PLATFORM_LINUX_MODULE_H
#define NVSUPPORT_PLATFORM_LINUX_MODULE_H

#include "types.h"

inline constexpr DWORD DLL_PROCESS_DETACH = 0;
inline constexpr DWORD DLL_PROCESS_ATTACH = 1;

inline constexpr DWORD ERROR_SUCCESS = 0;

// The path of the module that a handle stands for, 0 for an unknown handle. A handle is an address in the module.
DWORD GetModuleFileNameA(HMODULE module, LPSTR path, DWORD size);
HMODULE GetModuleHandleA(LPCSTR name);
HMODULE LoadLibraryA(LPCSTR name);

DWORD GetLastError();
void SetLastError(DWORD error);
// Writes the text to standard error and ends the process at once.
[[noreturn]] void FatalAppExitA(UINT action, LPCSTR text);

#endif
