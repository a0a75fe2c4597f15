#include "last_error.h"

namespace {

// Initial-exec: each thread has the variable from its start. Otherwise its first use on a thread would allocate memory,
// and the error to be kept may be that there is none.
[[gnu::tls_model("initial-exec")]] thread_local DWORD lastError = 0;

}  // namespace

DWORD GetLastError() {
  return lastError;
}

void SetLastError(DWORD error) {
  lastError = error;
}
