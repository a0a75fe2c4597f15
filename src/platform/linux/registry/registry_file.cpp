#include "registry/registry_file.h"

#include <algorithm>
#include <charconv>

#include "base/ascii.h"

namespace platform {
namespace {

std::string_view Trim(std::string_view text) {
  return base::Trim(text, " \t\r");
}

// Takes one line off the front of the text.
std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return Trim(line);
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (text.size() < prefix.size() || base::ToLower(text.substr(0, prefix.size())) != prefix) return false;
  text.remove_prefix(prefix.size());
  return true;
}

// Takes a text in quotes off the front, with \\ and \" undone.
std::optional<std::string> TakeQuoted(std::string_view& line) {
  if (!line.starts_with('"')) return std::nullopt;
  std::string value;
  for (std::size_t at = 1; at < line.size(); ++at) {
    if (line[at] == '"') {
      line.remove_prefix(at + 1);
      return value;
    }
    if (line[at] == '\\' && at + 1 < line.size() && (line[at + 1] == '\\' || line[at + 1] == '"')) ++at;
    value += line[at];
  }
  return std::nullopt;
}

// The whole text as a hexadecimal number.
std::optional<DWORD> HexNumber(std::string_view text) {
  DWORD number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::string NumberBytes(DWORD number) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift & 0xFF);
  return bytes;
}

std::string_view WithoutComment(std::string_view text) {
  return Trim(text.substr(0, text.find(';')));
}

// hex:01,02,... and hex(type):..., which go on in the next line behind a backslash at the end of a line. Ends at the
// first part that is no byte.
std::optional<RegistryValue> TakeBytes(std::string_view line, std::string_view& rest) {
  RegistryValue value{REG_BINARY, {}};
  if (TakePrefix(line, "(")) {
    const std::optional<DWORD> type = HexNumber(line.substr(0, line.find(')')));
    if (!type) return std::nullopt;
    value.type = *type;
    line.remove_prefix(std::min(line.find(')') + 1, line.size()));
  }
  if (!TakePrefix(line, ":")) return std::nullopt;
  bool sound = true;
  for (bool more = true; more;) {
    line = WithoutComment(line);
    more = line.ends_with('\\');
    if (more) line = Trim(line.substr(0, line.size() - 1));
    while (sound && !line.empty()) {
      const std::size_t end = std::min(line.find(','), line.size());
      const std::optional<DWORD> byte = HexNumber(Trim(line.substr(0, end)));
      sound = byte && *byte <= 0xFF;
      if (sound) value.bytes += static_cast<char>(*byte);
      line.remove_prefix(std::min(end + 1, line.size()));
    }
    // A list that breaks off must not swallow the line that follows it.
    const std::size_t next = rest.find_first_not_of(" \t");
    more = more && next != std::string_view::npos && HexNumber(rest.substr(next, 1)).has_value();
    if (more) line = TakeLine(rest);
  }
  return value;
}

std::optional<RegistryValue> TakeValue(std::string_view line, std::string_view& rest) {
  if (line.starts_with('"')) {
    std::optional<std::string> text = TakeQuoted(line);
    if (!text) return std::nullopt;
    return RegistryValue{REG_SZ, *text + '\0'};
  }
  if (TakePrefix(line, "dword:")) {
    const std::optional<DWORD> number = HexNumber(WithoutComment(line));
    if (!number) return std::nullopt;
    return RegistryValue{REG_DWORD, NumberBytes(*number)};
  }
  return TakePrefix(line, "hex") ? TakeBytes(line, rest) : std::nullopt;
}

void ParseValueLine(std::string_view line, std::string_view& rest, RegistryValues& values) {
  std::optional<std::string> name = TakePrefix(line, "@") ? std::string() : TakeQuoted(line);
  line = Trim(line);
  if (!name || !TakePrefix(line, "=")) return;
  line = Trim(line);
  if (line.starts_with('-')) {
    values.erase(base::ToLower(*name));
    return;
  }
  if (std::optional<RegistryValue> value = TakeValue(line, rest)) values[base::ToLower(*name)] = std::move(*value);
}

// Whether `key` is `above` or lies below it.
bool IsWithin(std::string_view key, std::string_view above) {
  return key.starts_with(above) && (key.size() == above.size() || key[above.size()] == '\\');
}

}  // namespace

std::optional<RegistryValues> FindRegistryKey(std::string_view text, std::string_view key) {
  const std::string wanted = base::ToLower(key);
  std::optional<RegistryValues> found;
  bool inKey = false;
  while (!text.empty()) {
    std::string_view line = TakeLine(text);
    if (line.starts_with('[')) {
      const std::size_t end = line.rfind(']');
      inKey = false;
      if (end == std::string_view::npos) continue;
      const std::string section = base::ToLower(line.substr(1, end - 1));
      if (section.starts_with('-')) {
        if (IsWithin(wanted, std::string_view(section).substr(1))) found.reset();
        continue;
      }
      inKey = section == wanted;
      if (!found && IsWithin(section, wanted)) found.emplace();
    } else if (inKey) {
      ParseValueLine(line, text, *found);
    }
  }
  return found;
}

}  // namespace platform
