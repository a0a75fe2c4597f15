// A dialog that notes what the frame calls on it, and the templates that the tests of the frame run.
#ifndef NVSUPPORT_TESTS_UI_PROBE_DIALOG_H
#define NVSUPPORT_TESTS_UI_PROBE_DIALOG_H

#include <functional>
#include <string>
#include <vector>

#include "test_dialog_ids.h"
#include "ui/dialog.h"

namespace nvsupport {

// Makes the templates of test_dialogs.rc known. Runs once, whoever calls it.
void AddTestDialogs();

class ProbeDialog : public Dialog {
 public:
  explicit ProbeDialog(std::uint32_t id = IDD_PROBE) : Dialog(id) { AddTestDialogs(); }

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
  void onCommand(int id, HWND, int code) override { Note("onCommand", {id, code}); }
  LRESULT onNotify(WPARAM wParam, LPARAM lParam) override {
    Note("onNotify", {static_cast<int>(wParam)});
    return Dialog::onNotify(wParam, lParam);
  }
  void onLeftButton(bool twice, int x, int y, WPARAM keys) override {
    Note("onLeftButton", {twice ? 1 : 0, x, y, static_cast<int>(keys)});
  }
  void onTimer(WPARAM id) override { Note("onTimer", {static_cast<int>(id)}); }
  void onSize(int width, int height) override { Note("onSize", {width, height}); }
  INT_PTR onDialogMessage(UINT message, WPARAM, LPARAM) override {
    if (message == WM_MOUSEWHEEL || message == WM_MOVING) Note("onDialogMessage", {static_cast<int>(message)});
    return 0;
  }
  void onDialogCommand(int id, HWND control, int code) override {
    Note("onDialogCommand", {id, code});
    Dialog::onDialogCommand(id, control, code);
  }
  void onDialogNotify(WPARAM wParam, LPARAM) override { Note("onDialogNotify", {static_cast<int>(wParam)}); }

  HWND Handle() const { return hwnd; }
  using Dialog::getItemText;
  using Dialog::isChecked;
  using Dialog::moved;
  using Dialog::setItemText;
  using Dialog::wheelTarget;

  std::function<void()> atInit;
  std::vector<std::string> calls;

 private:
  void Note(const char* name, const std::vector<int>& values = {}) {
    std::string call = name;
    for (const int value : values) call += " " + std::to_string(value);
    calls.push_back(call);
  }
};

}  // namespace nvsupport

#endif
