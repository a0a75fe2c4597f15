// The system's own headers, and dial-up connections, which only Windows has.
#ifndef NVSUPPORT_PLATFORM_WINDOWS_SYSTEM_H
#define NVSUPPORT_PLATFORM_WINDOWS_SYSTEM_H

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
// Behind windows.h, on which they rely.
#include <mbstring.h>
#include <shellapi.h>
#include <shlobj.h>
#include <wininet.h>

#include "dial_up.h"

#endif
