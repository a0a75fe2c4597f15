#include "account/service_manager.h"

#include <utility>

#include "base/process_wide.h"
#include "nvsupport/nvsupport.h"

namespace nvsupport {
namespace {

constexpr std::uint32_t personalComputer = 0x10000000;
constexpr DWORD maxComputerName = 256;

CVServiceManager* sessionInUse = nullptr;  // by the account operation that runs

}  // namespace

CVServiceManager::CVServiceManager(const std::string& productName, std::uint32_t platform, std::uint32_t deviceId)
    : m_platform(platform), m_productName(productName), m_deviceId(deviceId) {
  LoadProfile();
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
