// The module loader: paths and handles of modules.
#ifndef NVSUPPORT_PLATFORM_LINUX_MODULE_H
#define NVSUPPORT_PLATFORM_LINUX_MODULE_H

#include "types.h"

inline constexpr DWORD DLL_PROCESS_DETACH = 0;
inline constexpr DWORD DLL_PROCESS_ATTACH = 1;

// The path of the module that a handle stands for, 0 for an unknown handle. A handle is an address in the module.
DWORD GetModuleFileNameA(HMODULE module, LPSTR path, DWORD size);
HMODULE GetModuleHandleA(LPCSTR name);
HMODULE LoadLibraryA(LPCSTR name);

namespace platform {

// Keeps the path of this module's file. Called while it is loaded: the host may load it by a relative path and change
// its folder afterwards.
void RememberModulePath();

}  // namespace platform

#endif
