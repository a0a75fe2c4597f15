#include "progress_display.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

#include "system.h"

namespace nvhost {
namespace {

using namespace std::chrono_literals;

constexpr auto terminalPause = 100ms;
constexpr auto plainPause = 1s;
constexpr std::size_t shortestBar = 8;
constexpr std::size_t longestBar = 24;
constexpr std::size_t anyWidth = 1000;
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

// A bar as wide as the room in front of a text; nothing if it would be too short.
std::string Bar(double share, std::size_t room) {
  constexpr std::size_t frame = 3;
  if (room < shortestBar + frame) return {};
  const std::size_t columns = std::min(room - frame, longestBar);
  const auto filled = static_cast<std::size_t>(share * static_cast<double>(columns));
  return "[" + std::string(filled, '#') + std::string(columns - filled, '-') + "] ";
}

// The most important parts come first; those that do not fit are left out.
std::string Line(const std::vector<std::string>& parts, std::size_t room) {
  std::string line;
  for (const std::string& part : parts) {
    if (line.size() + part.size() > room) break;
    line += part;
  }
  return line;
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
    : terminal(TerminalColumns() > 0),
      pause(terminal ? Clock::duration(terminalPause) : Clock::duration(plainPause)),
      next(begin + pause) {}

double ProgressDisplay::Seconds() const {
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

std::string ProgressDisplay::Describe(const WebProgressCounters& counters) const {
  const auto done = static_cast<double>(counters.done);
  const auto total = static_cast<double>(counters.total);
  const double speed = done / std::max(Seconds(), 0.001);
  const std::string pace = ", " + FormatBytes(speed) + "/s";
  // Asked each time, because the user may make the window narrower. The last column stays free: a character there could
  // begin a new line.
  const std::size_t room = terminal ? std::max<std::size_t>(TerminalColumns(), 1) - 1 : anyWidth;
  if (counters.total <= 0) return Line({FormatBytes(done), pace}, room);
  const double share = std::min(done / total, 1.0);
  const std::string left = speed > 0 ? ", " + FormatDuration(std::max(total - done, 0.0) / speed) + " left" : "";
  const std::string line = Line(
      {Format("%3.0f%%", std::floor(100 * share)), "  " + FormatBytes(done) + " of " + FormatBytes(total), pace, left},
      room);
  return (terminal ? Bar(share, room - line.size()) : "") + line;
}

void ProgressDisplay::Update(const WebProgressCounters& counters) {
  const Clock::time_point now = Clock::now();
  if (now < next) return;
  next = now + pause;
  Clear();
  std::fprintf(stderr, terminal ? "%s" : "%s\n", Describe(counters).c_str());
}

void ProgressDisplay::Clear() {
  if (terminal) std::fputs(clearLine, stderr);
}

}  // namespace nvhost
