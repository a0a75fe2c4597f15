// The cursor. The wait cursor is shown by a second thread, while the thread of the dialogs is blocked; a process that
// has opened no window has no cursor of ours.
#include "../threads.h"
#include "display_selection.h"
#include "platform/platform.h"
#include "windowing.h"

namespace {

// The thread whose input the calling one has joined, or 0. Initial-exec: it needs no memory at its first touch.
[[gnu::tls_model("initial-exec")]] thread_local DWORD joinedThread = 0;

// Shared cursors are known by their number.
HCURSOR SharedCursor(LPCSTR name) {
  return reinterpret_cast<HCURSOR>(const_cast<LPSTR>(name));
}

}  // namespace

namespace platform {

void NoteWindowsForWaitCursor() {
  if (windowing::Display* display = windowing::OpenedDisplay()) display->NoteCursorWindows();
}

}  // namespace platform

HCURSOR LoadCursorA(HINSTANCE module, LPCSTR name) {
  return module == nullptr ? SharedCursor(name) : nullptr;
}

HCURSOR SetCursor(HCURSOR cursor) {
  const DWORD thread = joinedThread != 0 ? joinedThread : GetCurrentThreadId();
  windowing::Display* display = windowing::DisplayOfThread(thread);
  if (display != nullptr && cursor == SharedCursor(IDC_WAIT)) display->ShowWaitCursor();
  return nullptr;
}

BOOL GetCursorPos(POINT* point) {
  windowing::Display* display = windowing::OpenedDisplay();
  const std::optional<POINT> position = display != nullptr ? display->CursorPosition() : std::nullopt;
  if (!position) return FALSE;
  *point = *position;
  return TRUE;
}

// The pointer is the user's and stays where it is: what is wanted is the other effect, that the window below it
// chooses its cursor again.
BOOL SetCursorPos(int, int) {
  windowing::Display* display = windowing::OpenedDisplay();
  if (display == nullptr) return FALSE;
  display->RestoreCursor();
  return TRUE;
}

BOOL AttachThreadInput(DWORD thread, DWORD toThread, BOOL attach) {
  if (thread != GetCurrentThreadId()) return FALSE;
  joinedThread = attach != FALSE ? toThread : 0;
  return TRUE;
}
