// Time stamps of files in the published form: units of 100 ns since 1 January 1601, UTC.
#ifndef NVSUPPORT_PLATFORM_LINUX_FILE_TIME_H
#define NVSUPPORT_PLATFORM_LINUX_FILE_TIME_H

#include <ctime>

#include "files.h"

namespace platform {

FILETIME ToFileTime(const std::timespec& time);

}  // namespace platform

#endif
