// Statics, edits and buttons: their window procedures, what they tell their dialog, and what all windows do alike. Also
// the keyboard focus: one control of the process has it, and each dialog remembers which of its controls gets it back.
#ifndef NVSUPPORT_PLATFORM_LINUX_WINDOWING_CONTROLS_H
#define NVSUPPORT_PLATFORM_LINUX_WINDOWING_CONTROLS_H

#include "display.h"
#include "windowing.h"

namespace windowing {

WNDPROC ControlProcedure(ControlKind kind);

// What a window of any kind does with a message: it keeps a text.
LRESULT DefaultWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// Sends a control's WM_COMMAND to its dialog.
void NotifyDialog(HWND control, WORD code);
// EN_UPDATE, then EN_CHANGE.
void NotifyTextChange(HWND edit);
// A push button or check box was clicked, by mouse, key or program.
void ClickButton(HWND button);

// The control that has the focus, or null.
HWND FocusedControlOfProcess();

// The focus has gone to a control (null: to none), and the display knows. Notifies the edits that got or lost it.
void GiveFocus(HWND control);
// Moves the focus to a control, on the display, too. selectAll: an edit's text is selected, as Tab does it.
void FocusControl(HWND control, bool selectAll);
// A window is being destroyed: it is notified of nothing more.
void ForgetFocus(HWND window);

// The first enabled control with a tab stop, in tab order; null without one.
HWND FirstTabStop(HWND dialog);

}  // namespace windowing

#endif
