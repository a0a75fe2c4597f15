// The user core on the headless display: message orders, keys, focus, controls, handles.
#include <gtest/gtest.h>

#include <new>
#include <optional>
#include <thread>

#include "probes.h"
#include "support/played_user.h"

namespace nvsupport {
namespace {

using user::Key;

HWND Item(HWND dialog, int id) {
  return GetDlgItem(dialog, id);
}

void FocusItem(HWND dialog, int id) {
  SendMessageA(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(dialog, id)), 1);
}

// No exception of a handler reaches the display.
const PlayedUser::Step closeBox = [](HWND dialog) { EXPECT_NO_THROW(user::CloseBox(dialog)); };
const PlayedUser::Step end = [](HWND dialog) { EndDialog(dialog, 1); };

TEST(UserCore, SendsADialogItsMessagesInTheirOrder) {
  PlayedUser person;
  person.steps = {PlayedUser::Clicks(IDC_BUTTON), PlayedUser::Types(IDC_EDIT, "typed"), closeBox};
  CoreProbe probe([](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) -> INT_PTR {
    EXPECT_TRUE(IsWindow(dialog));
    if (message == WM_INITDIALOG) {
      EXPECT_EQ(GetWindowLongPtrA(dialog, GWLP_USERDATA), 0);
      EXPECT_EQ(reinterpret_cast<HWND>(wParam), Item(dialog, IDC_EDIT));
      SetWindowTextA(Item(dialog, IDC_EDIT), "x");
      return TRUE;
    }
    if (message == WM_COMMAND && wParam == IDCANCEL) {
      EXPECT_EQ(reinterpret_cast<HWND>(lParam), Item(dialog, IDCANCEL));
      EndDialog(dialog, 5);
      EndDialog(dialog, 6);
    }
    return FALSE;
  });
  EXPECT_EQ(probe.Run(IDD_PROBE), 5);
  EXPECT_EQ(probe.seen, (Noted{"SETFONT", "INITDIALOG", "COMMAND 10 400", "COMMAND 10 300", "COMMAND 10 100",
                               "COMMAND 10 200", "COMMAND 16 0", "COMMAND 10 100", "COMMAND 10 400", "COMMAND 10 300",
                               "CLOSE", "COMMAND 2 0", "COMMAND 10 200", "DESTROY", "NCDESTROY"}));
  EXPECT_FALSE(IsWindow(probe.dialog));
}

TEST(UserCore, ChoosesTheButtonForAKeyByTheFocus) {
  const struct {
    int focus;
    Key key;
    int command;
  } cases[] = {{IDC_EDIT, Key::enter, IDOK},
               {IDC_TWO_STATES, Key::enter, IDOK},
               {IDC_BUTTON, Key::enter, IDC_BUTTON},
               {IDC_BUTTON, Key::space, IDC_BUTTON},
               {IDC_BUTTON, Key::escape, IDCANCEL}};
  for (const auto& row : cases) {
    PlayedUser person;
    person.steps = {[&](HWND dialog) {
      FocusItem(dialog, row.focus);
      user::Press(dialog, row.key);
    }};
    CoreProbe probe([](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
      if (message == WM_COMMAND) {
        EXPECT_EQ(reinterpret_cast<HWND>(lParam), Item(dialog, LOWORD(wParam)));
      }
      return EndOnButton(dialog, message, wParam, lParam);
    });
    EXPECT_EQ(probe.Run(IDD_PROBE), row.command);
  }
}

TEST(UserCore, MovesTheFocusInTemplateOrderPastWhatCannotTakeIt) {
  PlayedUser person;
  std::vector<int> visited;
  person.steps = {[&](HWND dialog) {
    for (int presses = 0; presses < 9; ++presses) {
      for (const int id : {10, 11, 12, 13, 14, 15, 1, 2, 16, 17}) {
        if (Item(dialog, id) == user::FocusedControl(dialog)) visited.push_back(id);
      }
      user::Press(dialog, Key::tab);
    }
    SendMessageA(dialog, WM_NEXTDLGCTL, 1, 0);
    EXPECT_EQ(user::FocusedControl(dialog), Item(dialog, IDC_EDIT));
    EXPECT_EQ(user::Record().selectedWhole, Item(dialog, IDC_EDIT));
    EndDialog(dialog, 1);
  }};
  CoreProbe(EndOnButton).Run(IDD_PROBE);
  EXPECT_EQ(visited, (std::vector<int>{10, 11, 12, 13, 14, 1, 2, 16, 10}));
}

TEST(UserCore, ChangesACheckBoxBeforeItTellsTheDialog) {
  PlayedUser person;
  std::vector<LRESULT> states;
  CoreProbe probe([&](HWND, UINT message, WPARAM, LPARAM lParam) -> INT_PTR {
    if (message == WM_COMMAND) states.push_back(SendMessageA(reinterpret_cast<HWND>(lParam), BM_GETCHECK, 0, 0));
    return FALSE;
  });
  person.steps = {[&](HWND dialog) {
    for (const int id : {IDC_TWO_STATES, IDC_THREE_STATES, IDC_MANUAL_BOX}) {
      user::Click(Item(dialog, id));
      user::Press(dialog, Key::space);
      SendDlgItemMessageA(dialog, id, BM_CLICK, 0, 0);
    }
    user::Click(Item(dialog, IDC_DISABLED));
    EXPECT_EQ(states, (std::vector<LRESULT>{1, 0, 1, 1, 2, 0, 0, 0, 0}));
    for (const auto& [id, largest] : {std::pair{IDC_TWO_STATES, 1}, {IDC_THREE_STATES, 2}, {IDOK, 0}}) {
      SendDlgItemMessageA(dialog, id, BM_SETCHECK, 7, 0);
      EXPECT_EQ(SendDlgItemMessageA(dialog, id, BM_GETCHECK, 0, 0), largest);
      EXPECT_EQ(user::CheckStateShown(Item(dialog, id)), largest);
    }
    EndDialog(dialog, 1);
  }};
  probe.Run(IDD_PROBE);
}

TEST(UserCore, KeepsTextsInStepWithTheDisplay) {
  PlayedUser person;
  person.steps = {[](HWND dialog) {
    const std::string typed = "Gr\xC3\xBC\xC3\x9F";
    user::Type(Item(dialog, IDC_SECRET), typed);
    char text[7] = "######";
    EXPECT_EQ(SendDlgItemMessageA(dialog, IDC_SECRET, WM_GETTEXTLENGTH, 0, 0), 6);
    EXPECT_EQ(GetDlgItemTextA(dialog, IDC_SECRET, text, 7), 6u);
    EXPECT_EQ(text, typed);
    EXPECT_EQ(GetDlgItemTextA(dialog, IDOK, text, 2), 1u);
    EXPECT_STREQ(text, "O");
    EXPECT_EQ(GetDlgItemTextA(dialog, 999, text, 7), 0u);
    EXPECT_STREQ(text, "");
    SetWindowTextA(dialog, "caf\xE9");  // not valid in the code page
    EXPECT_EQ(user::ViewOf(dialog)->title, "caf\xC3\xA9");
    EXPECT_EQ(user::ViewOf(dialog)->controls[3].text, "&Two \xE2\x82\xAC");
    EndDialog(dialog, 1);
  }};
  EXPECT_EQ(CoreProbe().Run(IDD_PROBE), 1);
}

TEST(UserCore, OpensADialogInsideADialog) {
  PlayedUser person;
  HWND outside = nullptr;
  CoreProbe inner([&](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
      EXPECT_EQ(GetParent(dialog), outside);
      EXPECT_EQ(GetWindow(dialog, GW_OWNER), outside);
      EXPECT_EQ(user::ViewOf(dialog)->owner, outside);
    }
    if (message == WM_INITDIALOG || message == WM_DESTROY) {
      EXPECT_EQ(user::IsEnabledOnDisplay(outside), message == WM_DESTROY);
    }
    return EndOnButton(dialog, message, wParam, lParam);
  });
  CoreProbe outer([&](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) -> INT_PTR {
    outside = dialog;
    if (message != WM_COMMAND || LOWORD(wParam) != IDC_BUTTON) return EndOnButton(dialog, message, wParam, lParam);
    EXPECT_EQ(inner.Run(IDD_PROBE, Item(dialog, IDC_EDIT)), IDOK);
    return TRUE;
  });
  person.steps = {
      [](HWND dialog) { SendMessageA(dialog, WM_COMMAND, IDC_BUTTON, 0); },
      [&](HWND dialog) {
        user::Click(Item(outside, IDOK));  // does not reach a disabled dialog
        user::CloseBox(outside);
        user::Press(dialog, Key::enter);
      },
      [](HWND dialog) { user::Press(dialog, Key::escape); },
  };
  EXPECT_EQ(outer.Run(IDD_PROBE), IDCANCEL);
  EXPECT_EQ(outer.seen, (Noted{"SETFONT", "INITDIALOG", "COMMAND 10 100", "COMMAND 16 0", "COMMAND 10 200",
                               "COMMAND 10 100", "COMMAND 2 0", "COMMAND 10 200", "DESTROY", "NCDESTROY"}));
}

TEST(UserCore, LeavesNothingOfADialogWhoseHandlerDestroysItOrThrows) {
  const struct {
    UINT trigger;
    std::deque<PlayedUser::Step> steps;
    INT_PTR result;  // when the handler destroys the dialog
  } cases[] = {
      {WM_SETFONT, {}, 0},       {WM_INITDIALOG, {}, 0}, {WM_COMMAND, {}, 0},
      {WM_CLOSE, {closeBox}, 0}, {WM_DESTROY, {end}, 1}, {WM_NCDESTROY, {end}, 1},
  };
  for (const auto& row : cases) {
    for (const bool throws : {false, true}) {
      SCOPED_TRACE(row.trigger);
      PlayedUser person;
      CoreProbe inner([&](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
        if (message == row.trigger && throws) throw std::bad_alloc();
        if (message == row.trigger) DestroyWindow(dialog);
        return TRUE;
      });
      CoreProbe outer([&](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) -> INT_PTR {
        if (message != WM_COMMAND || wParam != IDC_BUTTON) return EndOnButton(dialog, message, wParam, lParam);
        const auto run = [&] { EXPECT_EQ(inner.Run(IDD_PROBE, dialog), row.result); };
        if (throws) {
          EXPECT_THROW(run(), std::bad_alloc);
        } else {
          run();
        }
        return TRUE;
      });
      person.steps = row.steps;
      person.steps.push_front(PlayedUser::Clicks(IDC_BUTTON));
      person.steps.push_back(closeBox);
      EXPECT_EQ(outer.Run(IDD_PROBE), IDCANCEL);
      EXPECT_FALSE(IsWindow(inner.dialog));
      EXPECT_EQ(user::ViewOf(inner.dialog), nullptr);
    }
  }
}

TEST(UserCore, TakesAnInnerDialogDownWithItsOwner) {
  PlayedUser person;
  CoreProbe inner(EndOnButton);
  std::optional<INT_PTR> innerResult;
  CoreProbe outer([&](HWND dialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
    if (message == WM_COMMAND && wParam == IDC_BUTTON) innerResult = inner.Run(IDD_PLAIN, dialog);
    return TRUE;
  });
  person.steps = {PlayedUser::Clicks(IDC_BUTTON), [&](HWND) { DestroyWindow(outer.dialog); }};
  EXPECT_EQ(outer.Run(IDD_PROBE), 0);
  EXPECT_EQ(innerResult, 0);
  EXPECT_EQ(inner.seen, (Noted{"INITDIALOG", "DESTROY", "NCDESTROY"}));
}

TEST(UserCore, AnswersStaleAndUnknownHandlesWithNothing) {
  PlayedUser person;
  std::vector<HWND> handles = {nullptr, reinterpret_cast<HWND>(0x1234), reinterpret_cast<HWND>(~std::uintptr_t{0})};
  person.steps = {[&](HWND dialog) {
    handles.insert(handles.end(), {dialog, Item(dialog, IDC_EDIT), Item(dialog, IDOK)});
    user::Press(dialog, Key::enter);
  }};
  CoreProbe(EndOnButton).Run(IDD_PROBE);
  for (const HWND handle : handles) {
    RECT rectangle{};
    char text[10];
    EXPECT_FALSE(IsWindow(handle) || DestroyWindow(handle) || EndDialog(handle, 1));
    EXPECT_FALSE(GetWindowRect(handle, &rectangle) || SetWindowTextA(handle, "x"));
    EXPECT_FALSE(EnumChildWindows(
        handle, [](HWND, LPARAM) { return TRUE; }, 0));
    EXPECT_FALSE(SetWindowPos(handle, nullptr, 1, 1, 0, 0, SWP_NOSIZE));
    EXPECT_EQ(GetWindowTextA(handle, text, sizeof text), 0);
    EXPECT_EQ(GetParent(handle), nullptr);
    EXPECT_EQ(Item(handle, IDOK), nullptr);
    EXPECT_EQ(SendMessageA(handle, WM_CLOSE, 0, 0), 0);
    EXPECT_EQ(SetWindowLongPtrA(handle, GWLP_USERDATA, 1), 0);
    EXPECT_EQ(GetWindowLongPtrA(handle, GWLP_USERDATA), 0);
    user::Click(handle);
    user::Type(handle, "x");
    user::Drag(handle, {1, 1});
    user::Wheel(handle, 120);
  }
}

TEST(UserCore, TakesAWindowOfTheHostAsOwner) {
  const HWND host = reinterpret_cast<HWND>(0x4400001);
  for (const bool known : {true, false}) {
    PlayedUser person;
    if (known) user::Screen().foreignWindows[0x4400001] = {200, 100, 600, 500};
    person.steps = {[&](HWND dialog) {
      EXPECT_EQ(GetParent(dialog), known ? host : nullptr);
      EXPECT_EQ(user::ViewOf(dialog)->foreignOwner, known ? 0x4400001u : 0u);
      EXPECT_EQ(IsWindow(host), known);
      POINT points[2] = {{0, 0}, {5, 5}};
      MapWindowPoints(host, nullptr, points, 2);
      EXPECT_EQ(points[1].x, known ? 205 : 5);
      MapWindowPoints(nullptr, dialog, points, 1);
      EXPECT_EQ(points[0].y, (known ? 100 : 0) - 22);
      EndDialog(dialog, 1);
    }};
    EXPECT_EQ(CoreProbe().Run(IDD_PLAIN, host), 1);
  }
}

TEST(UserCore, MeasuresAndMovesInPixels) {
  PlayedUser person;
  short delta = 0;
  RECT moving{};
  CoreProbe probe([&](HWND, UINT message, WPARAM wParam, LPARAM lParam) -> INT_PTR {
    if (message == WM_MOUSEWHEEL) delta = static_cast<short>(HIWORD(wParam));
    if (message == WM_MOVING) moving = *reinterpret_cast<const RECT*>(lParam);
    return FALSE;
  });
  person.steps = {[](HWND dialog) {
    EXPECT_TRUE(SetWindowPos(dialog, nullptr, 30, 40, 0, 0, SWP_NOSIZE | SWP_NOZORDER));
    RECT edit{};
    GetWindowRect(Item(dialog, IDC_EDIT), &edit);
    EXPECT_EQ(edit.left, 30 + 4 + 35);
    EXPECT_EQ(edit.bottom, 40 + 22 + 23);
    user::Drag(dialog, {-5, 7});
    user::Wheel(Item(dialog, IDC_EDIT), -120);
    EndDialog(dialog, 1);
  }};
  probe.Run(IDD_PROBE);
  EXPECT_EQ((std::vector<LONG>{moving.left, moving.top, moving.right, moving.bottom}),
            (std::vector<LONG>{25, 47, 25 + 175 + 8, 47 + 163 + 8 + 18}));
  EXPECT_EQ(delta, -120);
  EXPECT_EQ(probe.seen, (Noted{"SETFONT", "INITDIALOG", "MOVING", "MOVE", "MOUSEWHEEL", "DESTROY", "NCDESTROY"}));
}

TEST(UserCore, ShowsAMessageBoxOverItsOwner) {
  PlayedUser person;
  CoreProbe probe(EndOnButton);
  person.steps = {[&](HWND dialog) {
    probe.seen.clear();
    EXPECT_EQ(MessageBoxA(dialog, "caf\xE9", nullptr, MB_ICONERROR), 1);
    EXPECT_TRUE(user::IsEnabledOnDisplay(dialog));
    EXPECT_EQ(probe.seen, (Noted{"COMMAND 10 200", "COMMAND 10 100"}));
    EndDialog(dialog, 1);
  }};
  probe.Run(IDD_PROBE);
  ASSERT_EQ(person.boxes.size(), 1u);
  EXPECT_EQ(person.boxes[0].owner, probe.dialog);
  EXPECT_EQ(person.boxes[0].text, "caf\xC3\xA9");
  EXPECT_EQ(person.boxes[0].caption, "Error");
}

TEST(UserCore, FailsWhereThereIsNothingToShow) {
  const HINSTANCE module = GetModuleHandleA(nullptr);
  testing::internal::CaptureStderr();
  {
    PlayedUser person;
    EXPECT_EQ(DialogBoxParamA(nullptr, MAKEINTRESOURCEA(IDD_PROBE), nullptr, EndOnButton, 0), -1);
    EXPECT_NE(GetLastError(), 0u);
    EXPECT_EQ(DialogBoxParamA(module, "by name", nullptr, EndOnButton, 0), -1);
    EXPECT_EQ(CoreProbe().Run(IDD_UNKNOWN_CONTROL), -1);
    // A display serves the thread that opened it.
    std::thread([] { EXPECT_EQ(MessageBoxA(nullptr, "from a worker", "thread", MB_OK), 0); }).join();
    EXPECT_TRUE(person.boxes.empty());
  }
  SetLastError(0);
  EXPECT_EQ(CoreProbe().Run(IDD_PROBE), -1);
  EXPECT_NE(GetLastError(), 0u);
  EXPECT_EQ(MessageBoxA(nullptr, "the text", "the caption", MB_OK), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "thread: from a worker\nNo display for the dialog \"Probe\"\nthe caption: the text\n");
}

}  // namespace
}  // namespace nvsupport
