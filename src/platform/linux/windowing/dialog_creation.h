// Makes a dialog's windows from its template and takes windows down again.
#ifndef NVSUPPORT_PLATFORM_LINUX_WINDOWING_DIALOG_CREATION_H
#define NVSUPPORT_PLATFORM_LINUX_WINDOWING_DIALOG_CREATION_H

#include "dialog_template.h"
#include "display.h"
#include "window_tree.h"

namespace windowing {

// Makes a dialog and its controls, in the core and on the display, where it is not shown yet. Sends no message. Null
// if the display cannot make it.
HWND CreateDialogWindows(Display& display, const DialogTemplate& form, HWND owner, DLGPROC procedure, ModalRun& run);

}  // namespace windowing

#endif
