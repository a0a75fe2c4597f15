// Dialogs that note what happens to them: on the bare window core, and on the frame. The templates are those of
// test_dialogs.rc.
#ifndef NVSUPPORT_TESTS_UI_PROBES_H
#define NVSUPPORT_TESTS_UI_PROBES_H

#include <functional>
#include <string>
#include <vector>

#include "support/played_user.h"
#include "test_dialog_ids.h"
#include "ui/dialog.h"

namespace nvsupport {

using Noted = std::vector<std::string>;

// Its procedure notes every message and does what a test asks for.
class CoreProbe {
 public:
  using Reaction = std::function<INT_PTR(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)>;

  explicit CoreProbe(Reaction onMessage = {}) : react(std::move(onMessage)) {}
  INT_PTR Run(WORD id, HWND owner = nullptr);
  INT_PTR Open() { return Run(IDD_PROBE); }

  HWND dialog = nullptr;
  Noted seen;  // "INITDIALOG", "COMMAND 10 300" with id and code (hexadecimal)

 private:
  static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

  Reaction react;
};

// A reaction: ends the dialog with the id of the button that was clicked.
INT_PTR EndOnButton(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

// Notes the calls of the frame, as "onCommand 13 512".
class ProbeDialog : public Dialog {
 public:
  explicit ProbeDialog(std::uint32_t id = IDD_PROBE) : Dialog(id) {}
  INT_PTR Open() { return run(nullptr); }

  INT_PTR onInitDialog(WPARAM wParam, LPARAM lParam) override {
    Note("onInitDialog");
    if (atInit) atInit();
    return Dialog::onInitDialog(wParam, lParam);
  }
  void onDestroy() override {
    Note("onDestroy");
    Dialog::onDestroy();
  }
  void onPaint() override { Note("onPaint"); }
  void onCommand(int id, HWND, int code) override { Note("onCommand", id, code); }
  LRESULT onNotify(WPARAM wParam, LPARAM lParam) override {
    Note("onNotify", wParam);
    return Dialog::onNotify(wParam, lParam);
  }
  void onLeftButton(bool twice, int x, int y, WPARAM keys) override { Note("onLeftButton", twice, x, y, keys); }
  void onTimer(WPARAM id) override { Note("onTimer", id); }
  void onSize(int width, int height) override { Note("onSize", width, height); }
  INT_PTR onDialogMessage(UINT message, WPARAM, LPARAM) override {
    if (message == WM_MOUSEWHEEL || message == WM_MOVING) Note("onDialogMessage", message);
    return 0;
  }
  void onDialogCommand(int id, HWND control, int code) override {
    Note("onDialogCommand", id, code);
    Dialog::onDialogCommand(id, control, code);
  }
  void onDialogNotify(WPARAM wParam, LPARAM) override { Note("onDialogNotify", wParam); }

  HWND Handle() const { return hwnd; }
  using Dialog::getItemText;
  using Dialog::isChecked;
  using Dialog::moved;
  using Dialog::setItemText;
  using Dialog::wheelTarget;

  std::function<void()> atInit;
  Noted calls;

 private:
  template <typename... Values>
  void Note(std::string call, Values... values) {
    ((call += ' ' + std::to_string(values)), ...);
    calls.push_back(call);
  }
};

// Opens a dialog of either kind, does something in it and ends it.
template <typename Opened>
void Within(Opened& dialog, const PlayedUser::Step& act) {
  PlayedUser person;
  person.steps = {[&act](HWND window) {
    act(window);
    EndDialog(window, 1);
  }};
  EXPECT_EQ(dialog.Open(), 1);
}

}  // namespace nvsupport

#endif
