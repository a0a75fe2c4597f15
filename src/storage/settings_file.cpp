#include "storage/settings_file.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "base/ascii.h"
#include "base/read_stream.h"
#include "platform/platform.h"
#include "storage/format_text.h"

namespace nvsupport {
namespace {

// Characters of a value that stand for themselves beside letters and digits.
constexpr std::string_view plainMarks = "$-_.!*'()";

bool IsPlain(char c) {
  return base::IsLetterOrDigit(c) || plainMarks.find(c) != std::string_view::npos;
}

std::string_view TrimBlanks(std::string_view text) {
  return base::Trim(text, " \t\n\r");
}

bool IsBlankOrComment(std::string_view line) {
  const std::size_t start = line.find_first_not_of(" \t");
  return start == std::string_view::npos || line[start] == '#';
}

// A larger file counts as unreadable, so that a load takes bounded time and memory, whatever the file is.
constexpr std::size_t maxSettingsBytes = std::size_t{1} << 20;

// Takes the next line that is neither blank nor a comment off the text; false when there is none.
bool ReadSettingsLine(std::string_view& text, std::string_view& line) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!IsBlankOrComment(line)) return true;
  }
  return false;
}

}  // namespace

std::string EncodeSettingsValue(std::string_view value) {
  std::string encoded;
  for (const char c : value) {
    if (IsPlain(c)) {
      encoded += c;
    } else if (c == ' ') {
      encoded += '+';
    } else {
      encoded += '%';
      base::AppendHexByte(encoded, static_cast<std::uint8_t>(c));
    }
  }
  return encoded;
}

std::string DecodeSettingsValue(std::string_view encoded) {
  std::string value;
  for (std::size_t at = 0; at < encoded.size(); ++at) {
    if (encoded[at] == '+') {
      value += ' ';
    } else if (encoded[at] != '%') {
      value += encoded[at];
    } else {
      if (encoded.size() - at < 3) break;
      const int high = base::HexDigitValue(encoded[at + 1]);
      const int low = base::HexDigitValue(encoded[at + 2]);
      if (high >= 0 && low >= 0) {
        value += static_cast<char>(high * 16 + low);
      } else {
        value += encoded.substr(at, 3);
      }
      at += 2;
    }
  }
  return value;
}

bool CSettingsFile::Load(const std::string& path) {
  const platform::FileStream file = platform::OpenFileStream(path.c_str(), "r");
  if (!file) return false;
  std::optional<std::string> bytes = base::ReadStream(file.get(), maxSettingsBytes);
  if (!bytes) {
    platform::TraceTooLarge(path, maxSettingsBytes);
    return false;
  }
  std::erase_if(*bytes, [](char c) { return c == '\r' || c == '\0'; });
  std::string_view text = *bytes;
  std::string_view line;
  while (ReadSettingsLine(text, line)) ParseSettingsLine(line);
  return true;
}

void CSettingsFile::ParseSettingsLine(std::string_view line) {
  for (;;) {
    const std::size_t end = line.find('&');
    const std::string_view pair = line.substr(0, end);
    const std::size_t equals = std::min(pair.find('='), pair.size());
    const std::string_view key = TrimBlanks(pair.substr(0, equals));
    const std::string_view value = TrimBlanks(pair.substr(std::min(equals + 1, pair.size())));
    // Where the keys stand in order, as a save leaves them, the hint is right.
    if (!key.empty() && !value.empty()) {
      entries.insert_or_assign(entries.end(), std::string(key), DecodeSettingsValue(value));
    }
    if (end == std::string_view::npos) return;
    line.remove_prefix(end + 1);
  }
}

bool CSettingsFile::Save(const std::string& path) const {
  platform::FileStream file = platform::OpenFileStream(path.c_str(), "w");
  if (!file) return false;
  std::string text;
  for (const auto& [key, value] : entries) {
    if (!key.empty() && !value.empty()) text.append(key).append("=").append(EncodeSettingsValue(value)).append("\n");
  }
  std::fwrite(text.data(), 1, text.size(), file.get());
  // The rest of the stream's buffer is written only now, which may fail as well.
  std::fflush(file.get());
  const bool written = !std::ferror(file.get());
  return std::fclose(file.release()) == 0 && written;
}

void CSettingsFile::SetText(const std::string& key, const std::string& value) {
  entries[key] = value;
}

std::string CSettingsFile::GetText(const std::string& key, const std::string& defaultText) const {
  const auto entry = entries.find(key);
  return entry != entries.end() ? entry->second : defaultText;
}

bool CSettingsFile::HasValue(const std::string& key) const {
  return !GetText(key).empty();
}

void CSettingsFile::SetInt(const std::string& key, std::int32_t value) {
  SetText(key, FormatText("0x%x", static_cast<unsigned>(value)));
}

std::int32_t CSettingsFile::GetInt(const std::string& key) const {
  // Base 0 recognises the forms by their prefix. A negative number was written as its 32 bits.
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(std::strtoll(GetText(key).c_str(), nullptr, 0)));
}

int CSettingsFile::GetHex(const std::string& key, std::span<std::uint8_t, 16> bytes) const {
  const std::string digits = GetText(key);
  const std::size_t count = std::min(digits.size() / 2, bytes.size());
  for (std::size_t at = 0; at < count; ++at) {
    const int high = std::max(base::HexDigitValue(digits[2 * at]), 0);
    const int low = std::max(base::HexDigitValue(digits[2 * at + 1]), 0);
    bytes[at] = static_cast<std::uint8_t>(high * 16 + low);
  }
  return static_cast<int>(count);
}

}  // namespace nvsupport
