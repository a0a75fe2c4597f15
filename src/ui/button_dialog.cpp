#include "ui/button_dialog.h"

#include "ui/dialog.h"

namespace nvsupport {
namespace {

class CDlgButtons final : public Dialog {
 public:
  CDlgButtons(std::uint32_t id, const std::string& shownText, std::uint32_t controlId)
      : Dialog(id), text(shownText), textControlId(controlId) {}

  std::uint32_t Result() const { return result; }

  INT_PTR onInitDialog(WPARAM, LPARAM) override {
    if (textControlId != 0) setItemText(static_cast<int>(textControlId), text);
    return 1;
  }

  void onDialogCommand(int id, HWND control, int code) override {
    if (code != 0) return Dialog::onDialogCommand(id, control, code);
    result = static_cast<std::uint32_t>(id);
    onCancel();
  }

 private:
  std::uint32_t result = IDCANCEL;  // the button that ended the dialog
  std::string text;
  std::uint32_t textControlId;
};

}  // namespace

std::uint32_t ShowButtonDialog(std::uint32_t id, HWND parent, const std::string& text, std::uint32_t textControlId,
                               std::uint32_t) {
  CDlgButtons dialog(id, text, textControlId);
  return dialog.run(parent) == IDOK ? IDOK : dialog.Result();
}

}  // namespace nvsupport
