#include "last_error.h"

namespace {

// Initial-exec, so that each thread has it from its beginning. Otherwise the first use on a thread would allocate it,
// and that may be the report of memory that ran out.
[[gnu::tls_model("initial-exec")]] thread_local DWORD lastError = 0;

}  // namespace

DWORD GetLastError() {
  return lastError;
}

void SetLastError(DWORD error) {
  lastError = error;
}
