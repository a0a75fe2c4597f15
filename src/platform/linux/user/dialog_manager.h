// What every dialog does by itself: the keys Enter and Esc, the close box, moving the focus.
#ifndef NVSUPPORT_PLATFORM_LINUX_USER_DIALOG_MANAGER_H
#define NVSUPPORT_PLATFORM_LINUX_USER_DIALOG_MANAGER_H

#include "user.h"

namespace user {

// The window procedure of all dialogs: the dialog procedure first, then the behaviour of dialogs.
LRESULT CALLBACK DialogWindowProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

// The command of the button with the focus, else of the default button, else IDOK.
void PressEnter(HWND dialog);
// The command of a button by its id, there or not; nothing if it is disabled.
void PressButton(HWND dialog, int id);

}  // namespace user

#endif
