// The wait cursor over the windows that this process has on an X server, whichever toolkit made them. While it shows,
// an invisible window with the cursor lies over each of them. Nothing of the host's windows is changed, and the server
// removes ours when their connection closes. On other systems there is no wait cursor.
#ifndef NVSUPPORT_PLATFORM_LINUX_WINDOWING_WAIT_CURSOR_H
#define NVSUPPORT_PLATFORM_LINUX_WINDOWING_WAIT_CURSOR_H

#include <optional>

#include "../types.h"

namespace windowing {

// False if the process can have no window on an X server: none is named, or its library is not loaded.
bool MayHaveWindows();

// May be called on any thread, but on one at a time. Takes some milliseconds, in which it talks to the server.
void ShowWaitCursor();
void HideWaitCursor();
// Where the pointer is; nothing unless the wait cursor shows.
std::optional<POINT> WaitCursorPosition();

}  // namespace windowing

#endif
