#include "trace.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <string_view>

#include "files/native_path.h"
#include "platform/platform.h"

namespace platform {
namespace {

constexpr const char* areaNames[] = {"web", "files", "display", "language", "registry"};  // as TraceArea counts
constexpr std::size_t longestLine = 2000;

// One bit for each area.
unsigned ReadAreas() {
  const char* const variable = secure_getenv("NV_TRACE");
  std::string_view rest = variable != nullptr ? variable : "";
  unsigned areas = 0;
  while (!rest.empty()) {
    const std::string_view word = rest.substr(0, rest.find(','));
    for (unsigned area = 0; area < std::size(areaNames); ++area) {
      if (word == "all" || word == areaNames[area]) areas |= 1u << area;
    }
    rest.remove_prefix(std::min(rest.size(), word.size() + 1));
  }
  return areas;
}

// Bytes of the character of UTF-8 that `text` begins with; 0 for an invalid one, and for one that a terminal obeys: a
// control character, the end of a line or a change of direction.
std::size_t ShownBytes(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  if (first < 0x80) return first >= 0x20 && first != 0x7F ? 1 : 0;
  const std::size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() < size) return 0;
  char32_t character = first & (0x7Fu >> size);
  for (const char c : text.substr(1, size - 1)) {
    if ((c & 0xC0) != 0x80) return 0;
    character = character << 6 | (static_cast<unsigned char>(c) & 0x3Fu);
  }
  constexpr char32_t least[] = {0x80, 0x800, 0x10000};  // of that size
  const auto within = [character](char32_t from, char32_t to) { return character >= from && character <= to; };
  const bool invalid = character < least[size - 2] || character > 0x10FFFF || within(0xD800, 0xDFFF);
  return invalid || character < 0xA0 || within(0x2028, 0x202E) || within(0x2066, 0x2069) ? 0 : size;
}

}  // namespace

bool IsTraced(TraceArea area) {
  static const unsigned areas = ReadAreas();
  return (areas >> static_cast<unsigned>(area) & 1) != 0;
}

void Trace(TraceArea area, const char* format, ...) {
  if (!IsTraced(area)) return;
  char line[longestLine];
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm utc{};
  gmtime_r(&now.tv_sec, &utc);
  int length = std::snprintf(line, sizeof line, "%02d:%02d:%02d.%03ld %s ", utc.tm_hour, utc.tm_min, utc.tm_sec,
                             now.tv_nsec / 1'000'000, areaNames[static_cast<unsigned>(area)]);
  std::va_list arguments;
  va_start(arguments, format);
  const auto room = sizeof line - static_cast<std::size_t>(length);
  const int wanted = std::vsnprintf(line + length, room, format, arguments);
  va_end(arguments);
  length += std::clamp(wanted, 0, static_cast<int>(room) - 1);
  // A name or a text of a server must neither begin a line of its own nor control the terminal.
  for (int at = 0; at < length;) {
    const std::size_t shown = ShownBytes({line + at, static_cast<std::size_t>(length - at)});
    if (shown == 0) line[at] = '?';
    at += std::max(1, static_cast<int>(shown));
  }
  line[length] = '\n';
  WriteToStandardError({line, static_cast<std::size_t>(length) + 1});
}

void TraceTooLarge(const std::string& path, std::size_t limit) {
  Trace(TraceArea::files, "%s: more than %zu bytes", NativePath(path.c_str()).c_str(), limit);
}

void TraceLanguage(const std::string& language, const std::string& catalogue, std::size_t texts) {
  Trace(TraceArea::language, "%s: %zu texts of %s", language.c_str(), texts, catalogue.c_str());
}

}  // namespace platform
