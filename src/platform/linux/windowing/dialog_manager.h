// What every dialog does with what the user does while it takes input: clicks, the keys Enter and Esc, the close box,
// and moves of the focus.
#ifndef NVSUPPORT_PLATFORM_LINUX_WINDOWING_DIALOG_MANAGER_H
#define NVSUPPORT_PLATFORM_LINUX_WINDOWING_DIALOG_MANAGER_H

#include "display.h"
#include "windowing.h"

namespace windowing {

// The window procedure of all dialogs: the dialog procedure first, then the behaviour of dialogs.
LRESULT CALLBACK DialogWindowProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

// The receiver of what a display reports.
DisplayEvents& CoreEvents();

}  // namespace windowing

#endif
