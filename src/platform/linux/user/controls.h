// Statics, edits and buttons: their window procedures, what they tell their dialog, and what all windows do alike.
#ifndef NVSUPPORT_PLATFORM_LINUX_USER_CONTROLS_H
#define NVSUPPORT_PLATFORM_LINUX_USER_CONTROLS_H

#include "display.h"
#include "user.h"

namespace user {

WNDPROC ControlProcedure(ControlKind kind);

// What a window of any kind does with a message: it keeps a text.
LRESULT DefaultWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// Sends a control's WM_COMMAND to its dialog.
void NotifyDialog(HWND control, WORD code);
// EN_UPDATE, then EN_CHANGE.
void NotifyTextChange(HWND edit);
// A click on a push button or check box, by whatever means.
void ClickButton(HWND button);

}  // namespace user

#endif
