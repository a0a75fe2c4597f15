// The calling thread's last error.
#ifndef NVSUPPORT_PLATFORM_LINUX_LAST_ERROR_H
#define NVSUPPORT_PLATFORM_LINUX_LAST_ERROR_H

#include "types.h"

inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
inline constexpr DWORD ERROR_INVALID_NAME = 123;

DWORD GetLastError();
void SetLastError(DWORD error);

#endif
