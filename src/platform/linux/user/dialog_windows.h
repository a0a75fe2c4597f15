// Makes a dialog's windows from its template and takes windows down again.
#ifndef NVSUPPORT_PLATFORM_LINUX_USER_DIALOG_WINDOWS_H
#define NVSUPPORT_PLATFORM_LINUX_USER_DIALOG_WINDOWS_H

#include "dialog_template.h"
#include "display.h"
#include "window_tree.h"

namespace user {

// The dialog with its controls, in the core and not yet shown on the display; no message is sent. Null if the display
// cannot make it.
HWND CreateDialogWindows(Display& display, const DialogTemplate& form, HWND owner, DLGPROC procedure, ModalRun& run);

}  // namespace user

#endif
