// The current time, and time stamps of files in the published form: units of 100 ns since 1 January 1601, UTC.
#ifndef NVSUPPORT_PLATFORM_LINUX_FILE_TIME_H
#define NVSUPPORT_PLATFORM_LINUX_FILE_TIME_H

#include <ctime>

#include "types.h"

struct FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
};

struct SYSTEMTIME {
  WORD wYear;
  WORD wMonth;
  WORD wDayOfWeek;
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
};

void GetSystemTime(SYSTEMTIME* time);
BOOL SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* fileTime);
LONG CompareFileTime(const FILETIME* left, const FILETIME* right);

namespace platform {

FILETIME ToFileTime(const std::timespec& time);

}  // namespace platform

#endif
