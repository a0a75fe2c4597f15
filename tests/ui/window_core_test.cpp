// The window core on the headless display: message orders, keys, focus, controls, handles.
#include <gtest/gtest.h>

#include <sstream>
#include <thread>

#include "platform/linux/windowing/window_tree.h"
#include "resources/resource_ids.h"
#include "support/played_user.h"

namespace nvsupport {
namespace {

using windowing::CoreEvents;

HWND Item(HWND dialog, int id) {
  return GetDlgItem(dialog, id);
}

// No exception of a handler reaches the display.
const PlayedUser::Step closeBox = [](HWND dialog) { EXPECT_NO_THROW(CoreEvents().OnCloseBox(dialog)); };

// Dialogs whose one procedure notes what it gets and then does what a test wants.
class WindowCore : public ::testing::Test {
 protected:
  using Reaction = std::function<void(HWND, UINT, WPARAM, LPARAM)>;

  WindowCore() {
    seen.str("");
    react = EndOnButton;
  }

  static INT_PTR Run(HWND owner = nullptr, WORD id = IDD_CREATE_ACCOUNT) {
    return DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(id), owner, Procedure, 0);
  }

  static void EndOnButton(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_COMMAND && HIWORD(wParam) == 0) EndDialog(dialog, LOWORD(wParam));
  }

  static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_COMMAND) {
      seen << std::dec << LOWORD(wParam) << ':' << std::hex << HIWORD(wParam) << ' ';
    } else {
      seen << std::hex << message << ' ';
    }
    react(dialog, message, wParam, lParam);
    return message == WM_INITDIALOG;
  }

  static inline std::ostringstream seen;  // numbers of messages; of commands control and code instead
  static inline Reaction react;
  PlayedUser person;
};

TEST_F(WindowCore, SendsADialogItsMessagesInTheirOrder) {
  HWND closed = nullptr;
  react = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
      EXPECT_EQ(reinterpret_cast<HWND>(wParam), Item(dialog, IDC_USER_ID));
      SetWindowTextA(Item(dialog, IDC_USER_ID), "x");
    }
    if (message != WM_COMMAND || wParam != IDCANCEL) return;
    EXPECT_EQ(reinterpret_cast<HWND>(lParam), Item(dialog, IDCANCEL));
    EndDialog(closed = dialog, 5);
    EndDialog(dialog, 6);
  };
  person.steps = {PlayedUser::Clicks(IDC_HELP_PAGE), PlayedUser::Types(IDC_USER_ID, "typed"),
                  [&](HWND dialog) {
                    person.Drag(dialog, {1, 1});
                    CoreEvents().OnWheel(Item(dialog, IDC_USER_ID), -120, {});
                    MessageBoxA(dialog, "takes the focus meanwhile", nullptr, MB_OK);
                  },
                  closeBox};
  EXPECT_EQ(Run(), 5);
  EXPECT_FALSE(IsWindow(closed));
  EXPECT_EQ(seen.str(),
            "30 110 1001:400 1001:300 "    // opening, with the first text
            "1001:100 "                    // the first focus
            "1001:200 1041:0 "             // the click
            "1001:100 1001:400 1001:300 "  // typing
            "216 3 20a "                   // dragging, the wheel
            "1001:200 1001:100 "           // the message box
            "10 2:0 1001:200 2 82 ");      // closing
}

TEST_F(WindowCore, ChangesACheckBoxBeforeItTellsTheDialog) {
  std::string states;  // clicked three times, then set to 7
  react = [&](HWND, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_COMMAND || wParam != IDC_KEEP_INFORMED) return;
    states += std::to_string(SendMessageA(reinterpret_cast<HWND>(lParam), BM_GETCHECK, 0, 0));
  };
  person.steps = {[&](HWND dialog) {
    const HWND box = Item(dialog, IDC_KEEP_INFORMED);
    for (const LONG_PTR style :
         {windowing::styleAutoCheckBox, windowing::styleAutoThreeState, windowing::styleCheckBox}) {
      SetWindowLongPtrA(box, GWL_STYLE, style);
      for (int i = 0; i < 3; ++i) PlayedUser::Clicks(IDC_KEEP_INFORMED)(dialog);
      SendMessageA(box, BM_SETCHECK, 7, 0);
      states += ":" + std::to_string(SendMessageA(box, BM_GETCHECK, 0, 0)) + " ";
    }
    EndDialog(dialog, 1);
  }};
  EXPECT_EQ(Run(), 1);
  EXPECT_EQ(states, "101:1 201:2 222:1 ") << "two states, three states, set by hand";
}

TEST_F(WindowCore, OpensADialogInsideADialogWhichGoesWithIt) {
  HWND outer = nullptr;
  react = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (dialog != outer && message == WM_INITDIALOG) {
      EXPECT_EQ(GetParent(dialog), outer);
      EXPECT_EQ(PlayedUser::ViewOf(dialog)->owner, outer);
      EXPECT_FALSE(person.enabled[outer]);
    }
    if (dialog != outer && message == WM_DESTROY) {
      EXPECT_TRUE(person.enabled[outer]);
    }
    EndOnButton(dialog, message, wParam, lParam);
  };
  person.steps = {[&](HWND dialog) {
                    outer = dialog;
                    EXPECT_EQ(Run(Item(dialog, IDC_USER_ID)), IDOK);
                    EXPECT_TRUE(seen.str().ends_with("1001:100 2 82 ")) << "the focus came back";
                    react = EndOnButton;
                    EXPECT_EQ(Run(dialog), 0);
                  },
                  [&](HWND dialog) {
                    PlayedUser::Clicks(IDOK)(outer);  // does not reach a disabled dialog
                    closeBox(outer);
                    CoreEvents().OnEnter(dialog);
                  },
                  [&](HWND) { DestroyWindow(outer); }};
  EXPECT_EQ(Run(), 0);
}

TEST(WindowCoreWithoutAUser, SaysWhatItCannotShow) {
  testing::internal::CaptureStderr();
  {
    // A display serves the thread that opened it.
    const PlayedUser person;
    std::thread([] { EXPECT_EQ(MessageBoxA(nullptr, "from a worker", "thread", MB_OK), 0); }).join();
  }
  EXPECT_EQ(DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_SIGN_IN), nullptr, nullptr, 0), -1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "thread: from a worker\nNo display for the dialog \"Sign in to Your Account\": nobody plays the user\n");
}

}  // namespace
}  // namespace nvsupport
