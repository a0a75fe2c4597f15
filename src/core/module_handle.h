// The modules that the library takes its dialogs from: its own, as the loader named it, and one loaded by name.
#ifndef NVSUPPORT_CORE_MODULE_HANDLE_H
#define NVSUPPORT_CORE_MODULE_HANDLE_H

#include "platform/platform.h"

namespace nvsupport {

extern HINSTANCE g_moduleHandle;
// The library that holds the dialogs with large ids; null until first needed, then kept.
extern HINSTANCE resourceLibrary;

}  // namespace nvsupport

#endif
