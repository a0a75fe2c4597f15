#include "account/credentials.h"

#include "account/service_manager.h"
#include "base/ascii.h"
#include "storage/files.h"
#include "storage/settings_file.h"

namespace nvsupport {
namespace {

constexpr std::string_view codedCharacters = "0123456789abcdefghijklmnopqrstuvwxyz";  // the codes from 1 on

// 0 for a character that does not count.
std::uint8_t CodeOf(char c) {
  return static_cast<std::uint8_t>(codedCharacters.find(base::ToLower(c)) + 1);
}

// The keys of settings.ini.
constexpr char userIdKey[] = "UserID";
constexpr char passwordKey[] = "Passwd";

// False where the platform gives no folder for the settings. Then nothing is read or written; otherwise the file would
// stand in the root folder.
bool HasFolder(const std::string& settingsPath) {
  return !GetFolderOf(settingsPath).empty();
}

std::string HexDigits(const Credential& bytes) {
  std::string digits;
  for (const std::uint8_t byte : bytes) base::AppendHexByte(digits, byte);
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

platform::SecretText DecodeCredential(const Credential& masked) {
  platform::SecretText text;
  text.Fill(masked.size(), [&](char* end, std::size_t) {
    std::size_t count = 0;
    for (const std::uint8_t code : MaskCredential(masked)) {
      if (code >= 1 && code <= codedCharacters.size()) end[count++] = codedCharacters[code - 1u];
    }
    return count;
  });
  return text;
}

Credential MaskCredential(const Credential& bytes) {
  Credential result = bytes;
  for (std::size_t at = 0; at < result.size(); ++at) result[at] ^= credentialMask[at];
  return result;
}

void CVServiceManager::LoadProfile() {
  const std::string path = GetSettingsPath();
  CSettingsFile settings;
  if (!HasFolder(path) || !settings.Load(path)) return;
  m_userId = settings.GetText(userIdKey);
  if (!settings.HasValue(passwordKey)) return;
  Credential masked = credentialMask;  // bytes that the file lacks stand for no character
  settings.GetHex(passwordKey, masked);
  m_password = DecodeCredential(masked);
}

void CVServiceManager::SaveProfile() const {
  const std::string path = GetSettingsPath();
  if (!HasFolder(path)) return;
  CSettingsFile settings;
  settings.SetText(userIdKey, m_userId);
  if (m_savePassword) settings.SetText(passwordKey, HexDigits(MaskCredential(EncodeCredential(m_password.view()))));
  settings.Save(path);
}

std::string CVServiceManager::GetSettingsPath() const {
  return GetSpecialFolder(CSIDL_LOCAL_APPDATA, m_productName + "-Service") + "\\settings.ini";
}

}  // namespace nvsupport
