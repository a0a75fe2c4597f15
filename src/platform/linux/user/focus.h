// The keyboard focus: one control of the process has it, and each dialog keeps the one that gets it back.
#ifndef NVSUPPORT_PLATFORM_LINUX_USER_FOCUS_H
#define NVSUPPORT_PLATFORM_LINUX_USER_FOCUS_H

#include "user.h"

namespace user {

// The control that has the focus, or null.
HWND FocusedControlOfProcess();

// The focus has gone to a control (null: to none), as the display knows: tells the edits concerned.
void GiveFocus(HWND control);
// Moves the focus to a control, on the display too; selectAll: selects an edit's text, as Tab does.
void FocusControl(HWND control, bool selectAll);
// A window goes: nothing is told to it any more.
void ForgetFocus(HWND window);

// The enabled control with a tab stop that follows `from` in tab order, or precedes it; null without one. From null:
// the first, or the last.
HWND NextTabStop(HWND dialog, HWND from, bool backwards);

}  // namespace user

#endif
