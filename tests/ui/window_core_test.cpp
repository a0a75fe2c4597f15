// The window core on the headless display: message orders, keys, focus, controls, handles, damaged templates.
#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <thread>

#include "platform/linux/windowing/dialog_manager.h"
#include "platform/linux/windowing/dialog_template.h"
#include "platform/linux/windowing/window_tree.h"
#include "resources/resource_ids.h"
#include "support/played_user.h"

namespace nvsupport {
namespace {

using windowing::CoreEvents;

HWND Item(HWND dialog, int id) {
  return GetDlgItem(dialog, id);
}

constexpr WPARAM Note(int id, WPARAM code) {
  return code << 16 | static_cast<WPARAM>(id);
}

// No exception of a handler reaches the display.
const PlayedUser::Step closeBox = [](HWND dialog) { EXPECT_NO_THROW(CoreEvents().OnCloseBox(dialog)); };
const PlayedUser::Step end = [](HWND dialog) { EndDialog(dialog, 1); };

// Dialogs whose one procedure notes what it gets and then does what a test wants.
class WindowCore : public ::testing::Test {
 protected:
  using Messages = std::vector<std::pair<UINT, WPARAM>>;  // with the parameter of commands
  using Reaction = std::function<void(HWND, UINT, WPARAM, LPARAM)>;

  WindowCore() {
    seen.clear();
    react = EndOnButton;
  }

  static INT_PTR Run(HWND owner = nullptr, WORD id = IDD_CREATE_ACCOUNT) {
    return DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(id), owner, Procedure, 0);
  }
  void Within(const PlayedUser::Step& act) {
    person.steps = {act, end};
    EXPECT_EQ(Run(), 1);
  }

  static void EndOnButton(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_COMMAND && HIWORD(wParam) == 0) EndDialog(dialog, LOWORD(wParam));
  }

  static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    seen.emplace_back(message, message == WM_COMMAND ? wParam : 0);
    react(dialog, message, wParam, lParam);
    return message == WM_INITDIALOG;
  }

  static inline Messages seen;
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
  const Messages parts[] = {
      // Opening, with the first text and the focus.
      {{WM_SETFONT, 0},
       {WM_INITDIALOG, 0},
       {WM_COMMAND, Note(IDC_USER_ID, 0x400)},
       {WM_COMMAND, Note(IDC_USER_ID, 0x300)}},
      {{WM_COMMAND, Note(IDC_USER_ID, 0x100)}},
      // Click and typing.
      {{WM_COMMAND, Note(IDC_USER_ID, 0x200)}, {WM_COMMAND, IDC_HELP_PAGE}, {WM_COMMAND, Note(IDC_USER_ID, 0x100)}},
      {{WM_COMMAND, Note(IDC_USER_ID, 0x400)}, {WM_COMMAND, Note(IDC_USER_ID, 0x300)}},
      {{WM_MOVING, 0}, {WM_MOVE, 0}, {WM_MOUSEWHEEL, 0}},
      // The message box.
      {{WM_COMMAND, Note(IDC_USER_ID, 0x200)}, {WM_COMMAND, Note(IDC_USER_ID, 0x100)}},
      {{WM_CLOSE, 0},
       {WM_COMMAND, IDCANCEL},
       {WM_COMMAND, Note(IDC_USER_ID, 0x200)},
       {WM_DESTROY, 0},
       {WM_NCDESTROY, 0}},
  };
  Messages expected;
  for (const Messages& part : parts) expected.insert(expected.end(), part.begin(), part.end());
  EXPECT_EQ(seen, expected);
}

TEST_F(WindowCore, ChangesACheckBoxBeforeItTellsTheDialog) {
  const struct {
    const char* what;
    LONG_PTR style;
    std::vector<LRESULT> clicked;  // states after each click
    int largest;
  } cases[] = {{"two states", windowing::styleAutoCheckBox, {1, 0, 1}, 1},
               {"three states", windowing::styleAutoThreeState, {1, 2, 0}, 2},
               {"by hand", windowing::styleCheckBox, {0, 0, 0}, 1},
               {"push button", windowing::stylePushButton, {0, 0, 0}, 0}};
  for (const auto& row : cases) {
    std::vector<LRESULT> states;
    react = [&](HWND, UINT message, WPARAM wParam, LPARAM lParam) {
      if (message != WM_COMMAND || wParam != IDC_KEEP_INFORMED) return;
      states.push_back(SendMessageA(reinterpret_cast<HWND>(lParam), BM_GETCHECK, 0, 0));
    };
    Within([&](HWND dialog) {
      const HWND box = Item(dialog, IDC_KEEP_INFORMED);
      SetWindowLongPtrA(box, GWL_STYLE, row.style);
      for (int i = 0; i < 3; ++i) PlayedUser::Clicks(IDC_KEEP_INFORMED)(dialog);
      EXPECT_EQ(states, row.clicked) << row.what;
      SendMessageA(box, BM_SETCHECK, 7, 0);
      EXPECT_EQ(SendMessageA(box, BM_GETCHECK, 0, 0), row.largest) << row.what;
      EXPECT_EQ(person.checkStates[box], row.largest) << row.what;
    });
  }
}

TEST_F(WindowCore, KeepsTextsInStepWithTheDisplay) {
  Within([&](HWND dialog) {
    const std::string typed = "Gr\xC3\xBC\xC3\x9F";
    PlayedUser::Types(IDC_USER_ID, typed)(dialog);
    char text[7] = "######";
    EXPECT_EQ(GetDlgItemTextA(dialog, IDC_USER_ID, text, 7), 6u);
    EXPECT_EQ(text, typed);
    EXPECT_EQ(GetDlgItemTextA(dialog, IDOK, text, 2), 1u);
    EXPECT_STREQ(text, "O");
    EXPECT_EQ(GetDlgItemTextA(dialog, 999, text, 7), 0u);
    EXPECT_STREQ(text, "");
    SetWindowTextA(dialog, "caf\xE9");  // not valid in the code page
    EXPECT_EQ(PlayedUser::ViewOf(dialog)->title, "caf\xC3\xA9");
  });
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
                    const Messages::value_type focused(WM_COMMAND, Note(IDC_USER_ID, 0x100));
                    EXPECT_EQ(std::count(seen.begin(), seen.end(), focused), 3) << "opened, opened, and came back";
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

TEST_F(WindowCore, LeavesNothingOfADialogWhoseHandlerDestroysItOrThrows) {
  const struct {
    const char* what;
    UINT trigger;
    INT_PTR result;  // when the handler destroys the dialog
  } cases[] = {
      {"SETFONT", WM_SETFONT, 0}, {"INITDIALOG", WM_INITDIALOG, 0}, {"COMMAND", WM_COMMAND, 0},
      {"CLOSE", WM_CLOSE, 0},     {"DESTROY", WM_DESTROY, 2},       {"NCDESTROY", WM_NCDESTROY, 2},
  };
  for (const auto& row : cases) {
    for (const bool throws : {false, true}) {
      SCOPED_TRACE(row.what);
      HWND window = nullptr;
      react = [&](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
        window = dialog;
        if (message == row.trigger && throws) throw std::bad_alloc();
        if (message == row.trigger) DestroyWindow(dialog);
        EndOnButton(dialog, message, wParam, lParam);
      };
      person.steps = {closeBox};
      if (throws) {
        EXPECT_THROW(Run(), std::bad_alloc);
      } else {
        EXPECT_EQ(Run(), row.result);
      }
      person.steps.clear();  // for it may not have come to that
      EXPECT_FALSE(IsWindow(window));
      EXPECT_EQ(PlayedUser::ViewOf(window), nullptr);
    }
  }
}

TEST_F(WindowCore, AnswersStaleAndUnknownHandlesWithNothing) {
  std::vector<HWND> handles = {nullptr, reinterpret_cast<HWND>(0x1234), reinterpret_cast<HWND>(~std::uintptr_t{0})};
  Within([&](HWND dialog) { handles.insert(handles.end(), {dialog, Item(dialog, IDC_USER_ID), Item(dialog, IDOK)}); });
  for (const HWND handle : handles) {
    RECT rectangle{};
    EXPECT_FALSE(IsWindow(handle));
    EXPECT_FALSE(GetWindowRect(handle, &rectangle));
    EXPECT_FALSE(SetWindowTextA(handle, "x"));
    EXPECT_FALSE(GetParent(handle));
    CoreEvents().OnTextEdited(handle, "x");
    CoreEvents().OnWheel(handle, 120, {});
  }
}

TEST(WindowCoreWithoutAUser, FailsWhereThereIsNothingToShow) {
  const auto run = [](HINSTANCE module, LPCSTR name) { return DialogBoxParamA(module, name, nullptr, nullptr, 0); };
  testing::internal::CaptureStderr();
  {
    PlayedUser person;
    EXPECT_EQ(run(nullptr, MAKEINTRESOURCEA(IDD_CREATE_ACCOUNT)), -1);
    EXPECT_EQ(run(GetModuleHandleA(nullptr), "by name"), -1);
    // A display serves the thread that opened it.
    std::thread([] { EXPECT_EQ(MessageBoxA(nullptr, "from a worker", "thread", MB_OK), 0); }).join();
    EXPECT_TRUE(person.boxes.empty());
  }
  EXPECT_EQ(run(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_CREATE_ACCOUNT)), -1);
  EXPECT_NE(GetLastError(), 0u);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "thread: from a worker\nNo display for the dialog \"Create an Online Account\": nobody plays the user\n");
}

TEST(DialogTemplates, AreRefusedWhenTruncatedAnywhere) {
  const windowing::Bytes whole =
      windowing::FindDialogTemplate(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_CREATE_ACCOUNT));
  ASSERT_TRUE(windowing::ParseDialogTemplate(whole));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    // A copy of exactly that size, so that a read behind its end is seen.
    const std::vector<unsigned char> front(&whole[0], &whole[size]);
    EXPECT_FALSE(windowing::ParseDialogTemplate(front)) << size;
    EXPECT_TRUE(windowing::FindDialogTemplateIn(front, IDD_CREATE_ACCOUNT).empty()) << "what is no script, of " << size;
  }
}

}  // namespace
}  // namespace nvsupport
