// A settings file in memory: ordered key and value texts, read from and written to a file of key=value lines.
// docs/settings_format.md defines the file format.
#ifndef NVSUPPORT_STORAGE_SETTINGS_FILE_H
#define NVSUPPORT_STORAGE_SETTINGS_FILE_H

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

namespace nvsupport {

std::string EncodeSettingsValue(std::string_view value);
std::string DecodeSettingsValue(std::string_view encoded);

// Lives for one load or one save; the file on disk is the state.
class CSettingsFile {
 public:
  // Merges the file's pairs into the entries. True if the file could be opened.
  bool Load(const std::string& path);
  // Replaces the file's content with the entries that have a key and a value. False on any write error.
  bool Save(const std::string& path) const;

  void SetText(const std::string& key, const std::string& value);
  std::string GetText(const std::string& key, const std::string& defaultText = {}) const;
  // True if the key is present with a value that is not empty.
  bool HasValue(const std::string& key) const;
  void SetInt(const std::string& key, std::int32_t value);
  // 0 if the key is absent or its text is no number. Decimal, 0x hexadecimal and 0 octal are taken.
  std::int32_t GetInt(const std::string& key) const;
  // Decodes pairs of hexadecimal digits; returns the count of bytes written, the others stay as they were.
  int GetHex(const std::string& key, std::span<std::uint8_t, 16> bytes) const;

 private:
  void ParseSettingsLine(std::string_view line);

  std::map<std::string, std::string> entries;
};

}  // namespace nvsupport

#endif
