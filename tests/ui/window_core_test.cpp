// The window core on the headless display: message orders, keys, focus, controls, handles.
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
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
      seen << LOWORD(wParam) << ' ' << NameOf(codes, HIWORD(wParam)) << ", ";
    } else {
      seen << NameOf(messages, message) << ", ";
    }
    react(dialog, message, wParam, lParam);
    return message == WM_INITDIALOG;
  }

  using Names = std::map<UINT, const char*>;
  static inline const Names messages = {{WM_DESTROY, "destroy"}, {WM_MOVE, "move"},       {WM_CLOSE, "close"},
                                        {WM_SETFONT, "font"},    {WM_NCDESTROY, "gone"},  {WM_INITDIALOG, "init"},
                                        {WM_MOVING, "moving"},   {WM_MOUSEWHEEL, "wheel"}};
  static inline const Names codes = {
      {0, "pushed"}, {0x100, "focus"}, {0x200, "focus lost"}, {0x300, "change"}, {0x400, "update"}};
  static std::string NameOf(const Names& names, UINT number) {
    const auto name = names.find(number);
    return name != names.end() ? name->second : std::to_string(number);
  }

  // What was seen since the last time.
  static std::string Seen() {
    std::string text = seen.str();
    seen.str("");
    return text;
  }

  static inline std::ostringstream seen;  // names of messages; of commands control and code instead
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
  person.steps = {[&](HWND dialog) {
    EXPECT_EQ(Seen(), "font, init, 1001 update, 1001 change, 1001 focus, ") << "opening, with the first text";
    PlayedUser::Clicks(IDC_HELP_PAGE)(dialog);
    EXPECT_EQ(Seen(), "1001 focus lost, 1041 pushed, ");
    PlayedUser::Types(IDC_USER_ID, "typed")(dialog);
    EXPECT_EQ(Seen(), "1001 focus, 1001 update, 1001 change, ");
    person.Drag(dialog, {1, 1});
    CoreEvents().OnWheel(Item(dialog, IDC_USER_ID), -120, {});
    EXPECT_EQ(Seen(), "moving, move, wheel, ");
    MessageBoxA(dialog, nullptr, nullptr, MB_OK);
    EXPECT_EQ(Seen(), "1001 focus lost, 1001 focus, ") << "a message takes it meanwhile";
    char text[2] = "?";
    for (const int size : {5, 0, -1})
      EXPECT_EQ(GetDlgItemTextA(dialog, IDC_USER_ID, size > 0 ? nullptr : text, size), 0u) << size;
    EXPECT_EQ(SendDlgItemMessageA(dialog, IDC_USER_ID, WM_GETTEXT, 5, 0), 0);
    EXPECT_EQ(SendDlgItemMessageA(dialog, IDC_USER_ID, WM_GETTEXT, 0, reinterpret_cast<LPARAM>(text)), 0);
    EXPECT_STREQ(text, "?") << "no text goes where there is no room";
    SetWindowTextA(Item(dialog, IDC_USER_ID), nullptr);
    EXPECT_EQ(SendDlgItemMessageA(dialog, IDC_USER_ID, WM_GETTEXTLENGTH, 0, 0), 0);
    EXPECT_EQ(Seen(), "1001 update, 1001 change, ");
    SetWindowLongPtrA(Item(dialog, IDOK), GWL_STYLE, 0);
    SetWindowLongPtrA(Item(dialog, IDC_HELP_PAGE), GWL_STYLE, windowing::styleDefaultPushButton);
    CoreEvents().OnEnter(dialog);
    EXPECT_EQ(Seen(), "1041 pushed, ");
    closeBox(dialog);
  }};
  EXPECT_EQ(Run(), 5);
  EXPECT_FALSE(IsWindow(closed));
  EXPECT_EQ(Seen(), "close, 2 pushed, 1001 focus lost, destroy, gone, ");
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
                    EXPECT_TRUE(seen.str().ends_with("1001 focus, destroy, gone, ")) << "the focus came back";
                    react = EndOnButton;
                    EXPECT_EQ(Run(dialog), 0);
                  },
                  [&](HWND dialog) {
                    PlayedUser::Clicks(IDOK)(outer);  // does not reach a disabled dialog
                    closeBox(outer);
                    CoreEvents().OnEnter(dialog);
                  },
                  [&](HWND) { EXPECT_EQ(Run(outer), 0); }, [&](HWND) { DestroyWindow(outer); }};
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
