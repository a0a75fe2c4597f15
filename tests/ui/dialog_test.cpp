// The dialog class, played on the headless display, and the chain of records that ties objects to windows.
#include "ui/dialog.h"

#include <gtest/gtest.h>

#include "resources/resource_ids.h"
#include "support/played_user.h"
#include "ui/instance_subclasser.h"

namespace nvsupport {
namespace {

// Notes the calls of its operations, as "onCommand 13 512".
class ProbeDialog final : public Dialog {
 public:
  ProbeDialog() : Dialog(IDD_COMPUTER_NAME) {}
  using Dialog::wheelTarget;

  void onCommand(int id, HWND, int code) override { Note("onCommand", id, code); }
  LRESULT onNotify(WPARAM wParam, LPARAM lParam) override {
    Note("onNotify", wParam);
    return Dialog::onNotify(wParam, lParam);
  }
  void onLeftButton(bool twice, int x, int y, WPARAM keys) override { Note("onLeftButton", twice, x, y, keys); }
  void onSize(int width, int height) override { Note("onSize", width, height); }
  INT_PTR onDialogMessage(UINT message, WPARAM, LPARAM) override {
    if (message == WM_MOUSEWHEEL) Note("onDialogMessage", message);
    return 0;
  }
  void onDialogCommand(int id, HWND, int code) override { Note("onDialogCommand", id, code); }
  void onDialogNotify(WPARAM wParam, LPARAM) override { Note("onDialogNotify", wParam); }

  // Does something in the open dialog and gives the calls that it led to.
  std::string During(const PlayedUser::Step& act) {
    PlayedUser person;
    std::string during;
    person.steps = {[&](HWND window) {
      calls.clear();
      act(window);
      during = calls;
      EndDialog(window, 1);
    }};
    run(nullptr);
    return during;
  }

 private:
  template <typename... Values>
  void Note(const std::string& call, Values... values) {
    calls += call;
    ((calls += ' ' + std::to_string(values)), ...);
    calls += '\n';
  }

  std::string calls;
};

std::string CallsFor(UINT message, WPARAM wParam, LPARAM lParam) {
  return ProbeDialog().During([=](HWND window) { SendMessageA(window, message, wParam, lParam); });
}

TEST(Dialog, RoutesAMessageThroughBothStagesPlacesWithTheirSignAndSizesWithout) {
  EXPECT_EQ(CallsFor(WM_SIZE, 0, static_cast<LPARAM>(0xFFFF'8001u)), "onSize 32769 65535\n");
  EXPECT_EQ(CallsFor(WM_LBUTTONDOWN, 3, 0x0007'FFFE), "onLeftButton 0 -2 7 3\n");
  EXPECT_EQ(CallsFor(WM_LBUTTONDBLCLK, 0, static_cast<LPARAM>(0xFFF9'0002u)), "onLeftButton 1 2 -7 0\n");
  EXPECT_EQ(CallsFor(WM_COMMAND, 0x0200'000D, 0), "onCommand 13 512\nonDialogCommand 13 512\n");
  EXPECT_EQ(CallsFor(WM_NOTIFY, 5, 0), "onNotify 5\nonDialogNotify 5\n");
  EXPECT_EQ(CallsFor(WM_MOUSEWHEEL, 0, 0), "onDialogMessage 522\n") << "as long as nothing else gets the wheel";
  ProbeDialog probe;
  const PlayedUser::Step turnOverTarget = [&](HWND window) {
    probe.wheelTarget = GetDlgItem(window, IDC_COMPUTER_NAME);
    SendMessageA(window, WM_MOUSEWHEEL, 0, 0);
  };
  EXPECT_EQ(probe.During(turnOverTarget), "");
}

TEST(Dialog, EndsWithTheExceptionOfAHandler) {
  class Failing final : public Dialog {
   public:
    Failing() : Dialog(IDD_COMPUTER_NAME) {}
    void onOK() override { throw std::bad_alloc(); }
  };
  PlayedUser person;
  person.steps = {PlayedUser::Clicks(IDOK)};
  EXPECT_THROW(Failing().run(nullptr), std::bad_alloc);
}

TEST(Dialog, OfTheResourceLibraryFailsWithoutItAndSaysSo) {
  const PlayedUser person;
  EXPECT_EQ(Dialog(0).run(nullptr), 2);
  EXPECT_EQ(Dialog(5001).run(nullptr), -1);
  std::string told;
  for (const auto& box : person.boxes) told += box.caption + ": " + box.text + '\n';
  EXPECT_EQ(told,
            "Error: Failed to load Res.dll\nPlease re-install the software\n"
            "Internal error: Dialog 5001 failed: err=0x716\n");
}

WNDPROC ProcOf(HWND window) {
  return reinterpret_cast<WNDPROC>(GetWindowLongPtrA(window, GWLP_WNDPROC));
}

// A subclasser beside that of Window, which hands every message on.
LRESULT CALLBACK PassOn(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
InstanceSubclasser second(&PassOn);
LRESULT CALLBACK PassOn(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return second.callPrevious(window, message, wParam, lParam);
}

LRESULT CALLBACK ForeignProc(HWND, UINT, WPARAM, LPARAM) {
  return 0;
}

TEST(InstanceSubclasser, KeepsARecordOfEachUnlessAForeignProcedureStandsBetween) {
  static InstanceSubclasser& first = windowSubclasser;
  for (const bool foreign : {false, true}) {
    ProbeDialog().During([foreign](HWND window) {
      const HWND edit = GetDlgItem(window, IDC_COMPUTER_NAME);
      const WNDPROC original = ProcOf(edit);
      Window one;
      Window other;
      EXPECT_FALSE(first.unsubclass(edit));
      EXPECT_TRUE(first.subclass(edit, &one));
      EXPECT_FALSE(first.subclass(edit, &other)) << "the record that is there gets the new object";
      EXPECT_EQ(first.find(edit)->object, &other);
      if (foreign) SetWindowLongPtrA(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ForeignProc));
      second.subclass(edit, nullptr);
      EXPECT_EQ(first.unsubclass(edit), !foreign) << "the first of two leaves";
      EXPECT_EQ(first.find(edit) != nullptr, foreign);
      EXPECT_EQ(ProcOf(edit), &PassOn) << "the window's procedure stays that of the record in front";
      SetWindowTextA(edit, "handed on");
      EXPECT_EQ(SendMessageA(edit, WM_GETTEXTLENGTH, 0, 0), foreign ? 0 : 9);
      EXPECT_TRUE(second.unsubclass(edit));
      EXPECT_EQ(ProcOf(edit), foreign ? &ForeignProc : original);
      first.unsubclass(edit);
      {
        const Window tied(edit);
      }
      EXPECT_FALSE(IsWindow(edit)) << "a Window object takes its window with it";
    });
  }
}

}  // namespace
}  // namespace nvsupport
