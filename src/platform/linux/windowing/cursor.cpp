// The cursor. The wait cursor is shown by a second thread, while the thread of the user interface is blocked.
#include "../threads.h"
#include "display_selection.h"
#include "platform/platform.h"
#include "wait_cursor.h"
#include "windowing.h"

namespace {

// The thread whose input the calling one has joined, or 0. Initial-exec, so that its first use allocates no memory.
[[gnu::tls_model("initial-exec")]] thread_local DWORD joinedThread = 0;

// The handle of a shared cursor is its number.
HCURSOR SharedCursor(LPCSTR name) {
  return reinterpret_cast<HCURSOR>(const_cast<LPSTR>(name));
}

}  // namespace

namespace platform {

bool PrepareForWait() {
  if (windowing::Display* display = windowing::OpenedDisplay()) display->ShowWaiting(true);
  return windowing::IsUserInterfaceThread(GetCurrentThreadId()) && windowing::MayHaveWindows();
}

}  // namespace platform

HCURSOR LoadCursorA(HINSTANCE module, LPCSTR name) {
  return module == nullptr ? SharedCursor(name) : nullptr;
}

HCURSOR SetCursor(HCURSOR cursor) {
  const DWORD thread = joinedThread != 0 ? joinedThread : GetCurrentThreadId();
  if (cursor == SharedCursor(IDC_WAIT) && windowing::IsUserInterfaceThread(thread)) windowing::ShowWaitCursor();
  return nullptr;
}

// Fails if there is neither a wait cursor nor a display: then SetCursorPos would have no effect.
BOOL GetCursorPos(POINT* point) {
  const std::optional<POINT> position = windowing::WaitCursorPosition();
  if (!position && windowing::OpenedDisplay() == nullptr) return FALSE;
  *point = position.value_or(POINT{});
  return TRUE;
}

// Never moves the pointer, which is the user's. The library calls this for its other effect: the window below the
// pointer chooses its cursor again.
BOOL SetCursorPos(int, int) {
  windowing::HideWaitCursor();
  if (windowing::Display* display = windowing::OpenedDisplay()) display->ShowWaiting(false);
  return TRUE;
}

BOOL AttachThreadInput(DWORD thread, DWORD toThread, BOOL attach) {
  if (thread != GetCurrentThreadId()) return FALSE;
  joinedThread = attach != FALSE ? toThread : 0;
  return TRUE;
}
