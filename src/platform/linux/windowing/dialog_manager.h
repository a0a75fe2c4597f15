// What every dialog does by itself: what becomes of the user's doings, as long as the dialog takes input; the keys
// Enter and Esc, the close box, moving the focus.
#ifndef NVSUPPORT_PLATFORM_LINUX_WINDOWING_DIALOG_MANAGER_H
#define NVSUPPORT_PLATFORM_LINUX_WINDOWING_DIALOG_MANAGER_H

#include "display.h"
#include "windowing.h"

namespace windowing {

// The window procedure of all dialogs: the dialog procedure first, then the behaviour of dialogs.
LRESULT CALLBACK DialogWindowProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

// Whom a display tells what the user does.
DisplayEvents& CoreEvents();

}  // namespace windowing

#endif
