// The calling thread's last error.
#ifndef NVSUPPORT_PLATFORM_LINUX_LAST_ERROR_H
#define NVSUPPORT_PLATFORM_LINUX_LAST_ERROR_H

#include "types.h"

inline constexpr DWORD ERROR_SUCCESS = 0;

DWORD GetLastError();
void SetLastError(DWORD error);

#endif
