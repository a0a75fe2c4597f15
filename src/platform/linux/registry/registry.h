// The registry, read only, over REGEDIT4 text files.
#ifndef NVSUPPORT_PLATFORM_LINUX_REGISTRY_H
#define NVSUPPORT_PLATFORM_LINUX_REGISTRY_H

#include "types.h"

inline HKEY const HKEY_CURRENT_USER = reinterpret_cast<HKEY>(static_cast<UINT_PTR>(0x80000001u));
inline HKEY const HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(static_cast<UINT_PTR>(0x80000002u));
inline constexpr DWORD KEY_READ = 0x20019;
inline constexpr LONG ERROR_MORE_DATA = 234;

LONG RegOpenKeyExA(HKEY root, LPCSTR subKey, DWORD options, DWORD access, HKEY* key);
LONG RegQueryValueExA(HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type, BYTE* data, LPDWORD size);
LONG RegCloseKey(HKEY key);

#endif
