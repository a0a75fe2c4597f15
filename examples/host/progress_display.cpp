#include "progress_display.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace nvhost {
namespace {

using namespace std::chrono_literals;

constexpr auto kTerminalPause = 100ms;
constexpr auto kPlainPause = 1s;
constexpr int kBarColumns = 24;
constexpr const char* kClearLine = "\r\x1b[K";

template <typename... Values>
std::string Format(const char* format, Values... values) {
  std::array<char, 100> text;
  std::snprintf(text.data(), text.size(), format, values...);
  return text.data();
}

std::string FormatDuration(double seconds) {
  const long rounded = std::lround(seconds);
  return rounded < 100 ? Format("%ld s", rounded) : Format("%ld min", (rounded + 30) / 60);
}

std::string Bar(double share) {
  const int filled = static_cast<int>(share * kBarColumns);
  return "[" + std::string(static_cast<std::size_t>(filled), '#') +
         std::string(static_cast<std::size_t>(kBarColumns - filled), '-') + "] ";
}

}  // namespace

std::string FormatBytes(double bytes) {
  constexpr std::array<const char*, 5> kUnits = {"bytes", "KiB", "MiB", "GiB", "TiB"};
  std::size_t unit = 0;
  for (; bytes >= 1024 && unit + 1 < kUnits.size(); ++unit) bytes /= 1024;
  return Format(unit == 0 ? "%.0f %s" : "%.1f %s", bytes, kUnits[unit]);
}

ProgressDisplay::ProgressDisplay()
    : terminal(isatty(STDOUT_FILENO) != 0),
      pause(terminal ? Clock::duration(kTerminalPause) : Clock::duration(kPlainPause)),
      next(begin + pause) {}

double ProgressDisplay::Seconds() const {
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

std::string ProgressDisplay::Describe(const WebProgressCounters& counters) const {
  const auto done = static_cast<double>(counters.done);
  const auto total = static_cast<double>(counters.total);
  const double speed = done / std::max(Seconds(), 0.001);
  const std::string pace = FormatBytes(speed) + "/s";
  if (counters.total <= 0) return FormatBytes(done) + ", " + pace;
  const double share = std::min(done / total, 1.0);
  std::string text = terminal ? Bar(share) : "";
  text += Format("%3.0f%%  ", std::floor(100 * share)) + FormatBytes(done) + " of " + FormatBytes(total) + ", " + pace;
  if (speed > 0) text += ", " + FormatDuration(std::max(total - done, 0.0) / speed) + " left";
  return text;
}

void ProgressDisplay::Update(const WebProgressCounters& counters) {
  const Clock::time_point now = Clock::now();
  if (now < next) return;
  next = now + pause;
  Clear();
  std::fputs(Describe(counters).c_str(), stdout);
  if (!terminal) std::fputc('\n', stdout);
  std::fflush(stdout);
}

void ProgressDisplay::Clear() {
  if (terminal) std::fputs(kClearLine, stdout);
}

}  // namespace nvhost
