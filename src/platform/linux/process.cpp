#include "process.h"

#include <unistd.h>

#include "blocked_signals.h"

void platform::WriteToStandardError(std::string_view text) {
  const NoSignalOfWrite held;
  static_cast<void>(!write(STDERR_FILENO, text.data(), text.size()));
}

DWORD GetCurrentProcessId() {
  return static_cast<DWORD>(getpid());
}

void FatalAppExitA(UINT, LPCSTR text) {
  platform::WriteToStandardError(text);
  _exit(1);
}
