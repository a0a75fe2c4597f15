// The session object: the signed-in user on this computer for one product, and the account operations on it.
#ifndef NVSUPPORT_ACCOUNT_SERVICE_MANAGER_H
#define NVSUPPORT_ACCOUNT_SERVICE_MANAGER_H

#include <cstdint>
#include <string>

#include "platform/platform.h"

namespace nvsupport {

class CVServiceManager {
 public:
  CVServiceManager(const CVServiceManager&) = delete;
  CVServiceManager& operator=(const CVServiceManager&) = delete;
  // Writes nothing: what was not saved is lost.
  virtual ~CVServiceManager() = default;
  // The name to propose for this computer when it has none at the account service.
  virtual std::string GetDeviceName() = 0;

  // Valid until the user ID changes or the object goes.
  const char* GetUserId() const { return m_userId.c_str(); }
  std::uint32_t GetDeviceId() const { return m_deviceId; }
  // Full path of settings.ini; creates the product's folder.
  std::string GetSettingsPath() const;
  // Rewrites settings.ini with the user ID, and with the password if it is to be saved. A failure is not reported.
  void SaveProfile() const;

  // The account operations. `parent` owns their dialogs and messages, and may be null. Each shows its failures to the
  // user. True when the operation and all that follows from it are done.
  bool Login(HWND parent);
  bool CreateAccount(HWND parent);
  bool SetDeviceName(HWND parent);
  bool VerifyAccount(HWND parent);
  bool SendDeviceName(HWND parent, const std::string& name);
  // Shows nothing but the sign-in, if no password is known. The empty text if there is no token.
  std::string GetSessionToken(HWND parent);

 protected:
  // Starts with what was saved for the product.
  CVServiceManager(const std::string& productName, std::uint32_t platform, std::uint32_t deviceId);

  std::uint32_t m_platform;  // platform code that computers are registered with
  std::string m_userId;
  std::string m_productName;
  platform::SecretText m_password;  // empty: not known, a sign-in is needed
  bool m_savePassword = false;
  std::uint32_t m_deviceId;

 private:
  // Takes what settings.ini gives.
  void LoadProfile();

  // The dialogs of the operations, which read and write the fields.
  class CDlgLogin;
  class CDlgCreateAccount;
  class CDlgDevice;
};

// A personal computer.
class CServiceManager final : public CVServiceManager {
 public:
  explicit CServiceManager(const std::string& productName);
  std::string GetDeviceName() override;
};

// The one session, null while there is none. Created and replaced by x3e491215, destroyed at unload.
extern CVServiceManager* g_serviceManager;

// Ends the session if there is one.
void CloseSession();

// An account operation on the current session. While its dialogs run the host's timers and events run, too, and the
// host may open another session: then the old one lives on until the operation is done.
class AccountOperation {
 public:
  AccountOperation();
  ~AccountOperation();
  AccountOperation(const AccountOperation&) = delete;
  AccountOperation& operator=(const AccountOperation&) = delete;

  // Null if there is no session, or an operation runs already.
  CVServiceManager* Session() const { return session; }

 private:
  CVServiceManager* session = nullptr;
};

}  // namespace nvsupport

#endif
