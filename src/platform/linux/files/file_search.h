// Walks the entries of a folder that match a pattern.
#ifndef NVSUPPORT_PLATFORM_LINUX_FILE_SEARCH_H
#define NVSUPPORT_PLATFORM_LINUX_FILE_SEARCH_H

#include "files/file_time.h"
#include "types.h"

struct WIN32_FIND_DATAA {
  DWORD dwFileAttributes;
  FILETIME ftLastWriteTime;
  char cFileName[MAX_PATH];
};

HANDLE FindFirstFileA(LPCSTR pattern, WIN32_FIND_DATAA* data);
BOOL FindNextFileA(HANDLE find, WIN32_FIND_DATAA* data);
BOOL FindClose(HANDLE find);

#endif
