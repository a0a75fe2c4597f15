// Files, folders and time, over POSIX. A '\' in a path is turned to '/' here and nowhere else.
#ifndef NVSUPPORT_PLATFORM_LINUX_FILES_H
#define NVSUPPORT_PLATFORM_LINUX_FILES_H

#include "types.h"

inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;
inline constexpr DWORD CREATE_ALWAYS = 2;

struct FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
};

struct SYSTEMTIME {
  WORD wYear;
  WORD wMonth;
  WORD wDayOfWeek;
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
};

struct WIN32_FIND_DATAA {
  DWORD dwFileAttributes;
  FILETIME ftLastWriteTime;
  char cFileName[MAX_PATH];
};

DWORD GetFileAttributesA(LPCSTR path);
BOOL CreateDirectoryA(LPCSTR path, struct SECURITY_ATTRIBUTES* security);
HANDLE FindFirstFileA(LPCSTR pattern, WIN32_FIND_DATAA* data);
BOOL FindNextFileA(HANDLE find, WIN32_FIND_DATAA* data);
BOOL FindClose(HANDLE find);
BOOL DeleteFileA(LPCSTR path);
BOOL MoveFileA(LPCSTR from, LPCSTR to);
HANDLE CreateFileA(LPCSTR path, DWORD access, DWORD share, struct SECURITY_ATTRIBUTES* security, DWORD creation,
                   DWORD attributes, HANDLE templateFile);
BOOL WriteFile(HANDLE file, LPCVOID data, DWORD size, LPDWORD written, struct OVERLAPPED* overlapped);
// Closes a handle of any area: file, event, thread.
BOOL CloseHandle(HANDLE handle);
void GetSystemTime(SYSTEMTIME* time);
BOOL SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* fileTime);
LONG CompareFileTime(const FILETIME* left, const FILETIME* right);
DWORD GetCurrentProcessId();

#endif
