#include "ui/busy_cursor.h"

namespace nvsupport {

BusyCursor::BusyCursor() : ownerThread(GetCurrentThreadId()), waitCursor(LoadCursorA(nullptr, IDC_WAIT)) {
  if (!platform::PrepareForWait()) return;
  stopEvent.reset(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  watcher.reset(CreateThread(nullptr, 0, &BusyCursor::Watch, this, 0, nullptr));
  // Without a second thread nobody times the delay, so the cursor shows at once.
  if (!watcher) SetCursor(waitCursor);
}

BusyCursor::~BusyCursor() {
  if (stopEvent) SetEvent(stopEvent.get());
  if (watcher) WaitForSingleObject(watcher.get(), INFINITE);
  watcher.reset();
  stopEvent.reset();
  // Moving the pointer, even to where it is, makes the window below it choose its cursor again.
  POINT position{};
  if (GetCursorPos(&position)) SetCursorPos(static_cast<int>(position.x), static_cast<int>(position.y));
}

DWORD WINAPI BusyCursor::Watch(LPVOID self) {
  const auto* const cursor = static_cast<const BusyCursor*>(self);
  if (WaitForSingleObject(cursor->stopEvent.get(), static_cast<DWORD>(cursor->delay)) != WAIT_TIMEOUT) return 0;

  const DWORD ownThread = GetCurrentThreadId();
  AttachThreadInput(ownThread, cursor->ownerThread, TRUE);
  SetCursor(cursor->waitCursor);
  AttachThreadInput(ownThread, cursor->ownerThread, FALSE);
  WaitForSingleObject(cursor->stopEvent.get(), INFINITE);
  return 0;
}

}  // namespace nvsupport
