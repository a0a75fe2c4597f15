// The owner of a dialog or message box: it takes no input while that is open.
#ifndef NVSUPPORT_PLATFORM_LINUX_USER_OWNER_H
#define NVSUPPORT_PLATFORM_LINUX_USER_OWNER_H

#include "display.h"

namespace user {

// What can own: the dialog of a window of the core's, a window of the host's own that the display knows, else null.
HWND OwnerFor(Display& display, HWND window);

// Keeps an owner of the core's disabled until Enable; then it is as it was before.
class DisabledOwner {
 public:
  DisabledOwner(Display& usedDisplay, HWND ownerOrNull);
  DisabledOwner(const DisabledOwner&) = delete;
  DisabledOwner& operator=(const DisabledOwner&) = delete;
  ~DisabledOwner() { Enable(); }
  void Enable();

 private:
  Display& display;
  HWND owner = nullptr;  // null when there is nothing to enable
};

}  // namespace user

#endif
