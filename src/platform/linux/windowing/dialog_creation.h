// Makes a dialog's windows from its template and takes windows down again.
#ifndef NVSUPPORT_PLATFORM_LINUX_WINDOWING_DIALOG_CREATION_H
#define NVSUPPORT_PLATFORM_LINUX_WINDOWING_DIALOG_CREATION_H

#include "dialog_template.h"
#include "display.h"
#include "window_tree.h"

namespace windowing {

// The dialog with its controls, in the core and not yet shown on the display; no message is sent. Null if the display
// cannot make it.
HWND CreateDialogWindows(Display& display, const DialogTemplate& form, HWND owner, DLGPROC procedure, ModalRun& run);

}  // namespace windowing

#endif
