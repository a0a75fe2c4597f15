#include "account/credentials.h"

#include "core/service_manager.h"
#include "storage/format_text.h"
#include "storage/settings_file.h"

namespace nvsupport {
namespace {

constexpr std::string_view codedCharacters = "0123456789abcdefghijklmnopqrstuvwxyz";  // the codes from 1 on

// 0 for a character that does not count.
std::uint8_t CodeOf(char c) {
  if (c >= '0' && c <= '9') return static_cast<std::uint8_t>(c - '0' + 1);
  if (c >= 'A' && c <= 'Z') return static_cast<std::uint8_t>(c - 'A' + 11);
  if (c >= 'a' && c <= 'z') return static_cast<std::uint8_t>(c - 'a' + 11);
  return 0;
}

std::string HexDigits(const Credential& bytes) {
  std::string digits;
  for (const std::uint8_t byte : bytes) AppendFormatText(digits, "%02x", static_cast<unsigned>(byte));
  return digits;
}

}  // namespace

Credential EncodeCredential(std::string_view text) {
  Credential codes{};
  std::size_t count = 0;
  for (const char c : text) {
    if (count == codes.size()) break;
    if (const std::uint8_t code = CodeOf(c); code != 0) codes[count++] = code;
  }
  return codes;
}

std::string DecodeCredential(const Credential& masked) {
  std::string text;
  for (const std::uint8_t code : MaskCredential(masked)) {
    if (code >= 1 && code <= codedCharacters.size()) text += codedCharacters[code - 1u];
  }
  return text;
}

Credential MaskCredential(const Credential& bytes) {
  Credential result = bytes;
  for (std::size_t at = 0; at < result.size(); ++at) result[at] ^= credentialMask[at];
  return result;
}

void WipeText(std::string& text) {
  // Volatile: nobody reads the bytes again, so plain writes could be left out.
  volatile char* bytes = text.data();
  for (std::size_t at = 0; at < text.size(); ++at) bytes[at] = '\0';
  text.clear();
}

void CVServiceManager::SaveProfile() const {
  CSettingsFile settings;
  settings.SetText("UserID", m_userId);
  if (m_savePassword) settings.SetText("Passwd", HexDigits(MaskCredential(EncodeCredential(m_password))));
  settings.Save(GetSettingsPath());
}

}  // namespace nvsupport
