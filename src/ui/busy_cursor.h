// A wait cursor for a call that blocks the user interface longer than 150 milliseconds. The blocking operation makes it
// on its stack; a second thread times the delay, because the calling one is blocked.
#ifndef NVSUPPORT_UI_BUSY_CURSOR_H
#define NVSUPPORT_UI_BUSY_CURSOR_H

#include <cstdint>

#include "platform/platform.h"

namespace nvsupport {

class BusyCursor {
 public:
  BusyCursor();
  ~BusyCursor();
  BusyCursor(const BusyCursor&) = delete;
  BusyCursor& operator=(const BusyCursor&) = delete;

 private:
  static DWORD WINAPI Watch(LPVOID self);

  std::int32_t delay = 150;          // milliseconds before the cursor changes
  platform::ObjectHandle stopEvent;  // manual reset
  platform::ObjectHandle watcher;
  DWORD ownerThread;
  HCURSOR waitCursor;
};

}  // namespace nvsupport

#endif
