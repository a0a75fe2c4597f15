// The library's own module, as the loader named it.
#ifndef NVSUPPORT_CORE_MODULE_HANDLE_H
#define NVSUPPORT_CORE_MODULE_HANDLE_H

#include "platform/platform.h"

namespace nvsupport {

extern HINSTANCE g_moduleHandle;

}  // namespace nvsupport

#endif
