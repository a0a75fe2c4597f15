#include "account/service_manager.h"

#include <utility>

#include "account/credentials.h"
#include "base/ascii.h"
#include "base/process_wide.h"
#include "nvsupport/nvsupport.h"
#include "storage/files.h"
#include "storage/settings_file.h"

namespace nvsupport {
namespace {

constexpr std::uint32_t personalComputer = 0x10000000;
constexpr DWORD maxComputerName = 256;

// The keys of settings.ini.
constexpr char userIdKey[] = "UserID";
constexpr char passwordKey[] = "Passwd";

CVServiceManager* sessionInUse = nullptr;  // by the account operation that runs

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

CVServiceManager::CVServiceManager(const std::string& productName, std::uint32_t platform, std::uint32_t deviceId)
    : m_platform(platform), m_productName(productName), m_deviceId(deviceId) {
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

CServiceManager::CServiceManager(const std::string& productName)
    : CVServiceManager(productName, personalComputer, platform::GetComputerDeviceId()) {}

std::string CServiceManager::GetDeviceName() {
  platform::RegistryKey key;
  constexpr const char* path = "System\\CurrentControlSet\\Control\\ComputerName\\ActiveComputerName";
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, key.put()) != ERROR_SUCCESS) return {};
  char name[maxComputerName + 1] = {};  // terminated even when the value is not
  DWORD size = maxComputerName;
  auto* bytes = reinterpret_cast<BYTE*>(name);
  if (RegQueryValueExA(key.get(), "ComputerName", nullptr, nullptr, bytes, &size) != ERROR_SUCCESS) return {};
  return name;
}

void CloseSession() {
  const CVServiceManager* const old = std::exchange(g_serviceManager, nullptr);
  if (old != sessionInUse) delete old;
}

AccountOperation::AccountOperation() {
  if (sessionInUse == nullptr) session = sessionInUse = g_serviceManager;
}

AccountOperation::~AccountOperation() {
  if (session == nullptr) return;
  sessionInUse = nullptr;
  if (session != g_serviceManager) delete session;
}

}  // namespace nvsupport

void x3e491215(const char* product) try {
  const base::Call call;
  if (!call) return;
  const std::string name =
      product != nullptr ? product : "";  // a copy: it may be a text of the session that is closed next
  nvsupport::CloseSession();
  nvsupport::g_serviceManager = new nvsupport::CServiceManager(name);
} catch (...) {
  // Memory ran out: there is no session.
}

const char* x0d83f18d(void) {
  const base::Call call;
  return call && nvsupport::g_serviceManager != nullptr ? nvsupport::g_serviceManager->GetUserId() : "";
}

uint32_t x2ed7465a(void) {
  const base::Call call;
  return call && nvsupport::g_serviceManager != nullptr ? nvsupport::g_serviceManager->GetDeviceId() : 0;
}
