// Special folders after the XDG base directories, and the user's viewer.
#ifndef NVSUPPORT_PLATFORM_LINUX_SHELL_H
#define NVSUPPORT_PLATFORM_LINUX_SHELL_H

#include "types.h"

inline constexpr int CSIDL_PERSONAL = 0x05;
inline constexpr int CSIDL_LOCAL_APPDATA = 0x1C;
inline constexpr int SW_SHOW = 5;

struct SHELLEXECUTEINFOA {
  DWORD cbSize;
  DWORD fMask;
  HWND hwnd;
  LPCSTR lpVerb;
  LPCSTR lpFile;
  LPCSTR lpParameters;
  LPCSTR lpDirectory;
  int nShow;
};

BOOL SHGetSpecialFolderPathA(HWND owner, LPSTR path, int folder, BOOL create);
BOOL ShellExecuteExA(SHELLEXECUTEINFOA* info);

#endif
