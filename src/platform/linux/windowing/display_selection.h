// The display that shows the windows. It belongs to the thread that opened it; other threads have none.
#ifndef NVSUPPORT_PLATFORM_LINUX_WINDOWING_DISPLAY_SELECTION_H
#define NVSUPPORT_PLATFORM_LINUX_WINDOWING_DISPLAY_SELECTION_H

#include <string>

#include "display.h"

namespace windowing {

// The calling thread's display, opened if there is none yet. Null if none can be used: `whyNot` then says why and what
// to do, and the next call tries again.
Display* OpenDisplay(std::string& whyNot);
// The calling thread's display if it is open.
Display* OpenedDisplay();
// Whether the thread with this id runs the user interface: it has the display or, as long as none was opened, it is
// the first thread of the process.
bool IsUserInterfaceThread(DWORD thread);

// Ends the use of the display, before the module goes.
void CloseDisplay();

// The function that opens the display, or null. The module's own loads the plugin beside it; a program that is built
// from the library's objects may define another in its place.
NvOpenDisplay FindDisplay(std::string& whyNot);

}  // namespace windowing

#endif
