// A new account: the dialog that asks for the user's details, and operation 10 that makes the account.
#include <algorithm>

#include "account/account_exchange.h"
#include "account/service_manager.h"
#include "resources/resource_ids.h"
#include "storage/desktop.h"
#include "ui/dialog.h"
#include "ui/message.h"

namespace nvsupport {
namespace {

constexpr std::int32_t operation = 10;
constexpr std::int32_t statusEmailKnown = 13;  // the user has an account already: back to the sign-in

constexpr char privacyPage[] = "http://" NV_WEB_HOST "/privacy.htm";

constexpr StatusMessage refusals[] = {
    {2,
     "This user name is already in use.\nIf this is your account and you have forgotten the User ID or Password, "
     "click \"Cancel\" and \"I Forgot\" to recover them.",
     IDC_USER_ID},
    {3, "The password must be at least 6 letters or numbers", IDC_PASSWORD},
    {statusEmailKnown,
     "An account already exists with the same email address. Please sign in to that account.\nIf you have forgotten "
     "the User ID or Password, click \"Forgot\" to recover them."},
    {14, "You must provide a valid email address.", IDC_EMAIL},
};

// The language as the user chose it, which is not always one that has a catalogue.
std::string UserLanguage() {
  return GetRegistryText(HKEY_CURRENT_USER, "Software\\Norvane", "Language", "English");
}

}  // namespace

class CVServiceManager::CDlgCreateAccount final : public Dialog {
 public:
  explicit CDlgCreateAccount(CVServiceManager* session) : Dialog(IDD_CREATE_ACCOUNT), m_session(session) {}

  // The user retypes the password even when it came from the sign-in dialog.
  INT_PTR onInitDialog(WPARAM, LPARAM) override {
    setItemText(IDC_USER_ID, m_session->m_userId);
    setItemText(IDC_PASSWORD, m_session->m_password);
    setItemText(IDC_YOUR_NAME, m_name);
    setItemText(IDC_COMPANY, m_company);
    setItemText(IDC_EMAIL, m_email);
    SendMessageA(GetDlgItem(hwnd, IDC_KEEP_INFORMED), BM_SETCHECK, m_keepInformed ? 1 : 0, 0);
    SeparateBoxes();
    return 1;
  }

  void onOK() override {
    if (getSecretText(IDC_RETYPE_PASSWORD) != getSecretText(IDC_PASSWORD)) {
      ShowMessage(hwnd, MB_ICONERROR, "The passwords do not match");
      SetWindowTextA(GetDlgItem(hwnd, IDC_RETYPE_PASSWORD), "");
      FocusItem(hwnd, IDC_RETYPE_PASSWORD);
      return;
    }
    TakeFields();
    const StatusReply reply = SendAccount();
    if (!reply.sent) return ShowError("Problem communicating over the internet");
    if (!reply.answered) return ShowError("Internal server error");
    if (reply.status != statusSuccess) return ShowRefusal(reply.status);
    m_session->SaveProfile();
    EndDialog(hwnd, IDOK);
  }

  void onDialogCommand(int id, HWND control, int code) override {
    if (code == 0 && id == IDC_VIEW_POLICY) return static_cast<void>(OpenDocument(privacyPage, hwnd));
    if (code == 0 && id == IDC_HELP_PAGE) return static_cast<void>(OpenDocument(helpPage, hwnd));
    Dialog::onDialogCommand(id, control, code);
  }

 private:
  // The template lays the two boxes over each other: the second begins where the first ends.
  void SeparateBoxes() {
    const HWND box = GetDlgItem(hwnd, IDC_ACCEPT_POLICY);
    RECT first{};
    RECT second{};
    GetWindowRect(GetDlgItem(hwnd, IDC_KEEP_INFORMED), &first);
    GetWindowRect(box, &second);
    POINT corner{second.left, std::max(first.bottom, second.top)};
    MapWindowPoints(nullptr, hwnd, &corner, 1);
    SetWindowPos(box, nullptr, corner.x, corner.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  }

  void TakeFields() {
    m_session->m_userId = getItemText(IDC_USER_ID);
    m_session->m_password = getSecretText(IDC_PASSWORD);
    m_name = getItemText(IDC_YOUR_NAME);
    m_company = getItemText(IDC_COMPANY);
    m_email = getItemText(IDC_EMAIL);
    m_keepInformed = isChecked(IDC_KEEP_INFORMED);
  }

  StatusReply SendAccount() const {
    CWebBinaryCGI cgi(accountCgi, true);
    cgi.WriteValue(operation);
    cgi.WriteString(m_session->m_userId);
    cgi.WriteString(m_session->m_password.view());
    cgi.WriteString(m_name);
    cgi.WriteString(m_company);
    cgi.WriteString(m_email);
    cgi.WriteValue(static_cast<std::uint8_t>(m_keepInformed ? 1 : 0));
    cgi.WriteValue(registrationConstant);
    cgi.WriteString(UserLanguage());
    return SendForStatus(cgi);
  }

  void ShowError(const char* text) { ShowMessage(hwnd, MB_ICONERROR, text); }

  void ShowRefusal(std::int32_t status) {
    const StatusMessage refusal = MessageFor(refusals, status, nullptr);
    if (refusal.text != nullptr) {
      ShowError(refusal.text);
    } else {
      ShowMessageFormat(hwnd, MB_ICONERROR, "The server returned error code %d", static_cast<int>(status));
    }
    FocusItem(hwnd, refusal.field);
    if (status == statusEmailKnown) onCancel();
  }

  std::string m_name;
  std::string m_company;
  std::string m_email;
  bool m_keepInformed = false;
  CVServiceManager* m_session;
};

bool CVServiceManager::CreateAccount(HWND parent) {
  // The computer of a new user never has a name, so the service is not asked.
  return CDlgCreateAccount(this).run(parent) == IDOK && SetDeviceName(parent);
}

}  // namespace nvsupport
