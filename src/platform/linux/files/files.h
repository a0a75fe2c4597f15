// Files and folders over POSIX.
#ifndef NVSUPPORT_PLATFORM_LINUX_FILES_H
#define NVSUPPORT_PLATFORM_LINUX_FILES_H

#include "types.h"

inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_DEVICE = 0x40;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;
inline constexpr DWORD CREATE_ALWAYS = 2;

// On failure the last error tells a file that is just not there from one that cannot be, as under too long a name.
DWORD GetFileAttributesA(LPCSTR path);
BOOL CreateDirectoryA(LPCSTR path, struct SECURITY_ATTRIBUTES* security);
BOOL DeleteFileA(LPCSTR path);
BOOL MoveFileA(LPCSTR from, LPCSTR to);
HANDLE CreateFileA(LPCSTR path, DWORD access, DWORD share, struct SECURITY_ATTRIBUTES* security, DWORD creation,
                   DWORD attributes, HANDLE templateFile);
BOOL WriteFile(HANDLE file, LPCVOID data, DWORD size, LPDWORD written, struct OVERLAPPED* overlapped);

#endif
