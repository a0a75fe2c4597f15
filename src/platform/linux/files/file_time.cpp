#include "files/file_time.h"

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace {

using namespace std::chrono;

using FileTicks = duration<std::int64_t, std::ratio<1, 10'000'000>>;

constexpr sys_days fileEpoch = January / 1 / 1601;
// Some file systems store times that the form cannot hold; those count as its first or last year.
constexpr sys_seconds firstSecond = fileEpoch;
constexpr sys_seconds lastSecond = sys_days{January / 1 / 30000};

FILETIME FromTicks(FileTicks ticks) {
  const auto value = static_cast<std::uint64_t>(ticks.count());
  return {static_cast<DWORD>(value & 0xFFFFFFFF), static_cast<DWORD>(value >> 32)};
}

std::uint64_t Value(const FILETIME& time) {
  return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

}  // namespace

namespace platform {

FILETIME ToFileTime(const std::timespec& time) {
  const sys_seconds second = std::clamp(sys_seconds{seconds{time.tv_sec}}, firstSecond, lastSecond);
  return FromTicks(second - fileEpoch + duration_cast<FileTicks>(nanoseconds{time.tv_nsec}));
}

}  // namespace platform

void GetSystemTime(SYSTEMTIME* time) {
  // The coarse clock is the one that stamps files, so a file written later never looks older than a time taken here.
  std::timespec now{};
  clock_gettime(CLOCK_REALTIME_COARSE, &now);
  const sys_seconds second{seconds{now.tv_sec}};
  const sys_days day = floor<days>(second);
  const year_month_day date{day};
  const hh_mm_ss clock{second - day};
  time->wYear = static_cast<WORD>(static_cast<int>(date.year()));
  time->wMonth = static_cast<WORD>(static_cast<unsigned>(date.month()));
  time->wDayOfWeek = static_cast<WORD>(weekday{day}.c_encoding());
  time->wDay = static_cast<WORD>(static_cast<unsigned>(date.day()));
  time->wHour = static_cast<WORD>(clock.hours().count());
  time->wMinute = static_cast<WORD>(clock.minutes().count());
  time->wSecond = static_cast<WORD>(clock.seconds().count());
  time->wMilliseconds = static_cast<WORD>(now.tv_nsec / 1'000'000);
}

BOOL SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* fileTime) {
  const year_month_day date{year{time->wYear}, month{time->wMonth}, day{time->wDay}};
  if (!date.ok()) return FALSE;
  *fileTime = FromTicks(sys_days{date} - fileEpoch + hours{time->wHour} + minutes{time->wMinute} +
                        seconds{time->wSecond} + milliseconds{time->wMilliseconds});
  return TRUE;
}

LONG CompareFileTime(const FILETIME* left, const FILETIME* right) {
  const std::uint64_t a = Value(*left);
  const std::uint64_t b = Value(*right);
  return a < b ? -1 : (a > b ? 1 : 0);
}
