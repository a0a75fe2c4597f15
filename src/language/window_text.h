// Translation of the fixed texts of an open dialog.
#ifndef NVSUPPORT_LANGUAGE_WINDOW_TEXT_H
#define NVSUPPORT_LANGUAGE_WINDOW_TEXT_H

#include "platform/platform.h"

namespace nvsupport {

// Replaces the window's text by its translation where they differ. Has the signature of an enumeration callback;
// always returns 1.
BOOL CALLBACK TranslateWindowText(HWND window, LPARAM ignored);

}  // namespace nvsupport

#endif
