// The computer's name at the account service: the dialog that asks for it, and operation 9 that stores it.
#include "account/account_exchange.h"
#include "account/service_manager.h"
#include "resources/resource_ids.h"
#include "storage/desktop.h"
#include "ui/dialog.h"
#include "ui/message.h"

namespace nvsupport {
namespace {

constexpr std::int32_t operation = 9;

constexpr StatusMessage refusals[] = {
    {statusWrongUserId, "The User ID is not correct"},
    {statusWrongPassword, "The Password is not correct"},
};

}  // namespace

class CVServiceManager::CDlgDevice final : public Dialog {
 public:
  explicit CDlgDevice(CVServiceManager* session) : Dialog(IDD_COMPUTER_NAME), m_session(session) {}

  INT_PTR onInitDialog(WPARAM, LPARAM) override {
    setItemText(IDC_COMPUTER_NAME, m_session->GetDeviceName());
    return 1;
  }

  void onOK() override {
    if (m_session->SendDeviceName(hwnd, getItemText(IDC_COMPUTER_NAME))) EndDialog(hwnd, IDOK);
  }

  void onDialogCommand(int id, HWND control, int code) override {
    if (id == IDC_HELP_PAGE && code == 0) {
      OpenDocument(helpPage, hwnd);
      return;
    }
    Dialog::onDialogCommand(id, control, code);
  }

 private:
  CVServiceManager* m_session;
};

bool CVServiceManager::SetDeviceName(HWND parent) {
  return CDlgDevice(this).run(parent) == IDOK;
}

bool CVServiceManager::SendDeviceName(HWND parent, const std::string& name) {
  StatusReply reply;
  {
    CWebBinaryCGI cgi(accountCgi, true);
    cgi.WriteValue(operation);
    cgi.WriteString(m_userId);
    cgi.WriteString(m_password.view());
    cgi.WriteString(name);
    cgi.WriteValue(m_deviceId);
    cgi.WriteValue(registrationConstant);
    cgi.WriteValue(m_platform);
    reply = SendForStatus(cgi);
  }
  if (!reply.sent) {
    ShowMessage(parent, MB_OK, "Unable to contact the server.");
    return false;
  }
  if (!reply.answered) return false;
  if (reply.status == statusSuccess) return true;
  ShowMessage(parent, MB_OK, MessageFor(refusals, reply.status, exchangeFailed).text);
  return false;
}

}  // namespace nvsupport
