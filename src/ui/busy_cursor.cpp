#include "ui/busy_cursor.h"

namespace nvsupport {

BusyCursor::BusyCursor() : ownerThread(GetCurrentThreadId()), waitCursor(LoadCursorA(nullptr, IDC_WAIT)) {
  platform::NoteWindowsForWaitCursor();
  stopEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  watcher = CreateThread(nullptr, 0, &BusyCursor::Watch, this, 0, nullptr);
  // Without a second thread nobody can time the delay.
  if (watcher == nullptr) SetCursor(waitCursor);
}

BusyCursor::~BusyCursor() {
  if (stopEvent != nullptr) SetEvent(stopEvent);
  if (watcher != nullptr) {
    WaitForSingleObject(watcher, INFINITE);
    CloseHandle(watcher);
    watcher = nullptr;
  }
  if (stopEvent != nullptr) {
    CloseHandle(stopEvent);
    stopEvent = nullptr;
  }
  // Moving the pointer, if only to where it stands, makes the window below it choose its cursor again.
  POINT position{};
  if (GetCursorPos(&position)) SetCursorPos(static_cast<int>(position.x), static_cast<int>(position.y));
}

DWORD WINAPI BusyCursor::Watch(LPVOID self) {
  const auto* const cursor = static_cast<const BusyCursor*>(self);
  if (WaitForSingleObject(cursor->stopEvent, static_cast<DWORD>(cursor->delay)) != WAIT_TIMEOUT) return 0;

  const DWORD ownThread = GetCurrentThreadId();
  AttachThreadInput(ownThread, cursor->ownerThread, TRUE);
  SetCursor(cursor->waitCursor);
  AttachThreadInput(ownThread, cursor->ownerThread, FALSE);
  WaitForSingleObject(cursor->stopEvent, INFINITE);
  return 0;
}

}  // namespace nvsupport
