#include "process.h"

#include <unistd.h>

#include <cstdio>

DWORD GetCurrentProcessId() {
  return static_cast<DWORD>(getpid());
}

void FatalAppExitA(UINT, LPCSTR text) {
  std::fputs(text, stderr);
  _exit(1);
}
