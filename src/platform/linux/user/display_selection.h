// Which display shows the windows: the plugin beside the module, loaded with the first window, or one that the
// process put in its place. A display belongs to the thread that opened it; other threads have none.
#ifndef NVSUPPORT_PLATFORM_LINUX_USER_DISPLAY_SELECTION_H
#define NVSUPPORT_PLATFORM_LINUX_USER_DISPLAY_SELECTION_H

#include "display.h"

namespace user {

// The calling thread's display, opened if there is none yet. Null when there is none usable; tried again next time.
Display* OpenDisplay();
// The calling thread's display if it is open.
Display* OpenedDisplay();
// The display if it is open and belongs to the thread with this id, which may be another than the caller's.
Display* DisplayOfThread(DWORD thread);

// Puts a display in place for the calling thread; null goes back to the plugin. Not owned.
void UseDisplay(Display* display);
// Ends the use of the display, before the module goes.
void CloseDisplay();

}  // namespace user

#endif
