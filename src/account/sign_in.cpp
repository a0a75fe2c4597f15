// Sign-in: the dialog that asks for user ID and password, and operation 8 that proves them to the account service.
#include "account/account_exchange.h"
#include "account/service_manager.h"
#include "resources/resource_ids.h"
#include "storage/desktop.h"
#include "ui/dialog.h"
#include "ui/message.h"

namespace nvsupport {
namespace {

constexpr std::int32_t operation = 8;
constexpr std::int32_t stateSignedIn = 0;
constexpr std::int32_t stateComputerUnnamed = 1;

constexpr char forgotPage[] = "https://" NV_SERVICE_HOST "/forgot.htm";

constexpr char credentialMissing[] = "You must provide a user name and password to access your account.";
constexpr StatusMessage refusals[] = {
    {statusWrongUserId,
     "The User ID is not correct. If you have lost your ID, click the \"I Forgot\" button. Do not create more than "
     "one account.",
     IDC_USER_ID},
    {statusWrongPassword, "The Password is not correct. If you have lost your password, click the \"I Forgot\" button.",
     IDC_PASSWORD},
};

}  // namespace

class CVServiceManager::CDlgLogin final : public Dialog {
 public:
  explicit CDlgLogin(CVServiceManager* session) : Dialog(IDD_SIGN_IN), m_session(session) {}

  INT_PTR onInitDialog(WPARAM, LPARAM) override {
    const bool known = !m_session->m_userId.empty();
    setItemText(IDC_USER_ID, m_session->m_userId);
    if (known) setItemText(IDC_PASSWORD, m_session->m_password);
    FocusItem(hwnd, known ? IDC_PASSWORD : IDC_USER_ID);
    return 0;
  }

  void onOK() override {
    TakeCredentials();
    m_session->m_savePassword = isChecked(IDC_SAVE_PASSWORD);
    if (!m_session->VerifyAccount(hwnd)) {
      m_session->m_password.clear();
      return;
    }
    m_session->SaveProfile();
    EndDialog(hwnd, IDOK);
  }

  void onDialogCommand(int id, HWND control, int code) override {
    if (code == 0 && id == IDC_CREATE_ACCOUNT) return OnCreateAccount();
    if (code == 0 && id == IDC_FORGOT) return static_cast<void>(OpenDocument(forgotPage, hwnd));
    if (code == 0 && id == IDC_HELP_PAGE) return static_cast<void>(OpenDocument(helpPage, hwnd));
    Dialog::onDialogCommand(id, control, code);
  }

 private:
  void TakeCredentials() {
    m_session->m_userId = getItemText(IDC_USER_ID);
    m_session->m_password = getSecretText(IDC_PASSWORD);
  }

  // A created account counts as signed in.
  void OnCreateAccount() {
    TakeCredentials();
    if (!m_session->CreateAccount(hwnd)) return;
    setItemText(IDC_USER_ID, m_session->m_userId);
    setItemText(IDC_PASSWORD, m_session->m_password);
    EndDialog(hwnd, IDOK);
  }

  CVServiceManager* m_session;
};

bool CVServiceManager::Login(HWND parent) {
  return CDlgLogin(this).run(parent) == IDOK;
}

bool CVServiceManager::VerifyAccount(HWND parent) {
  if (m_userId.empty() || m_password.empty()) {
    ShowMessage(parent, MB_ICONINFORMATION, credentialMissing);
    FocusItem(parent, m_userId.empty() ? IDC_USER_ID : IDC_PASSWORD);
    return false;
  }

  StatusReply reply;
  std::int32_t state = -1;
  {
    // The connection is closed before the user is asked anything else.
    CWebBinaryCGI cgi(accountCgi, true);
    cgi.WriteValue(operation);
    cgi.WriteString(m_userId);
    cgi.WriteString(m_password.view());
    cgi.WriteValue(m_deviceId);
    reply = SendForStatus(cgi);
    if (reply.status == statusSuccess) cgi.ReadValue(state);
  }
  if (reply.status == statusSuccess && state == stateSignedIn) return true;
  if (reply.status == statusSuccess && state == stateComputerUnnamed) return SetDeviceName(parent);
  const StatusMessage refusal = MessageFor(refusals, reply.status, exchangeFailed);
  ShowMessage(parent, MB_OK, refusal.text);
  FocusItem(parent, refusal.field);
  return false;
}

}  // namespace nvsupport
