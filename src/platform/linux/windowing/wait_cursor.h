// The wait cursor over the windows that this process has on an X server, whichever toolkit made them: while it shows,
// an unseen window of ours lies over each and has the cursor. They go with the connection that made them, so that
// nothing of the host's is changed. On another screen system there is none.
#ifndef NVSUPPORT_PLATFORM_LINUX_WINDOWING_WAIT_CURSOR_H
#define NVSUPPORT_PLATFORM_LINUX_WINDOWING_WAIT_CURSOR_H

#include <optional>

#include "../types.h"

namespace windowing {

// False in a process that cannot have a window on an X server, because it has not loaded that system's library.
bool MayHaveWindows();

// On any thread, but on one at a time. Takes some milliseconds, in which it talks to the server.
void ShowWaitCursor();
void HideWaitCursor();
// Where the pointer is; nothing unless the wait cursor shows.
std::optional<POINT> WaitCursorPosition();

}  // namespace windowing

#endif
