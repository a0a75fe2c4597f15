// A host without Qt and without windows of its own that shows dialogs on the real display and tells on its output, line
// by line, what the library's side of them sees.
//   dialog OWNER TIMES    runs the dialog; between two runs waits for a line on its input
//   module MODULE TIMES   loads the module, asks for a token and unloads it
#include <clocale>
#include <cstdlib>

#include "display/module_cycle.h"
#include "resources/resource_ids.h"
#include "ui/busy_cursor.h"
#include "ui/dialog.h"
#include "ui/message.h"

namespace nvsupport {
namespace {

template <class... Values>
void Tell(const Values&... values) {
  ((std::cout << values << ' '), ...) << std::endl;
}

void WaitForLine() {
  std::string line;
  std::getline(std::cin, line);
}

class ProbeDialog final : public Dialog {
 public:
  ProbeDialog() : Dialog(IDD_SIGN_IN) {}

  INT_PTR onInitDialog(WPARAM, LPARAM) override {
    setItemText(IDC_USER_ID, "given");
    setItemText(IDC_SAVE_PASSWORD, "Sa&ve");
    SendMessageA(hwnd, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(hwnd, IDC_USER_ID)), 1);
    Tell("open");
    return 0;
  }

  void onDestroy() override {
    Tell("fields", getItemText(IDC_USER_ID), getItemText(IDC_PASSWORD), isChecked(IDC_SAVE_PASSWORD));
    Dialog::onDestroy();
  }

  void onDialogCommand(int id, HWND control, int code) override {
    if (code != 0) return;
    Tell("clicked", id);
    if (id == IDC_HELP_PAGE) {
      SetMessageCaption("Caption");
      ShowMessage(hwnd, MB_ICONERROR, "Wrong");
      const BusyCursor busy;
      Tell("blocked");
      WaitForLine();
    } else if (id == IDC_FORGOT) {
      const BusyCursor quick;
    } else if (id == IDC_CREATE_ACCOUNT) {
      Tell("inner", Dialog(IDD_COMPUTER_NAME).run(hwnd));
    } else {
      return Dialog::onDialogCommand(id, control, code);
    }
    Tell("done", id);
  }
};

}  // namespace
}  // namespace nvsupport

int main(int argc, char** argv) {
  using namespace nvsupport;
  if (argc < 4) return 2;
  const bool hasModule = argv[1] == std::string("module");
  for (int left = std::atoi(argv[3]); left > 0; --left) {
    if (hasModule) {
      testing::RunModuleCycle(argv[2]);
      continue;
    }
    Tell("result", ProbeDialog().run(reinterpret_cast<HWND>(std::strtoull(argv[2], nullptr, 0))));
    if (left > 1) WaitForLine();
  }
  Tell("locale", std::setlocale(LC_ALL, nullptr));
}
