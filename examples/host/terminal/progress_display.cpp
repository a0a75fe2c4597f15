#include "progress_display.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "system.h"

namespace nvhost {
namespace {

using namespace std::chrono_literals;

constexpr auto terminalPause = 100ms;
constexpr auto plainPause = 1s;
constexpr int barColumns = 24;
constexpr const char* clearLine = "\r\x1b[K";

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
  const int filled = static_cast<int>(share * barColumns);
  return "[" + std::string(static_cast<std::size_t>(filled), '#') +
         std::string(static_cast<std::size_t>(barColumns - filled), '-') + "] ";
}

}  // namespace

std::string FormatBytes(double bytes) {
  constexpr std::array<const char*, 5> units = {"bytes", "KiB", "MiB", "GiB", "TiB"};
  std::size_t unit = 0;
  for (; bytes >= 1024 && unit + 1 < units.size(); ++unit) bytes /= 1024;
  return Format(unit == 0 ? "%.0f %s" : "%.1f %s", bytes, units[unit]);
}

std::string FormatCount(std::uint64_t count) {
  std::string text = std::to_string(count);
  for (std::size_t comma = text.size(); comma > 3;) text.insert(comma -= 3, 1, ',');
  return text;
}

ProgressDisplay::ProgressDisplay()
    : terminal(UseTerminal()),
      pause(terminal ? Clock::duration(terminalPause) : Clock::duration(plainPause)),
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
  if (terminal) std::fputs(clearLine, stdout);
}

}  // namespace nvhost
