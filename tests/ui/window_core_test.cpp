// The window core on the headless display: message orders, keys, focus, controls, handles.
#include <gtest/gtest.h>

#include <new>
#include <thread>

#include "probes.h"

namespace nvsupport {
namespace {

using headless::Key;

HWND Item(HWND dialog, int id) {
  return GetDlgItem(dialog, id);
}

void FocusItem(HWND dialog, int id) {
  SendMessageA(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(dialog, id)), 1);
}

// No exception of a handler reaches the display.
const PlayedUser::Step closeBox = [](HWND dialog) { EXPECT_NO_THROW(headless::CloseBox(dialog)); };
const PlayedUser::Step end = [](HWND dialog) { EndDialog(dialog, 1); };

TEST(WindowCore, SendsADialogItsMessagesInTheirOrder) {
  PlayedUser person;
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
  person.steps = {PlayedUser::Clicks(IDC_BUTTON), PlayedUser::Types(IDC_EDIT, "typed"),
                  [](HWND dialog) {
                    headless::Drag(dialog, {1, 1});
                    headless::Wheel(Item(dialog, IDC_EDIT), -120);
                    MessageBoxA(dialog, "takes the focus meanwhile", nullptr, MB_OK);
                  },
                  closeBox};
  EXPECT_EQ(probe.Run(IDD_PROBE), 5);
  const Noted opening = {"SETFONT", "INITDIALOG", "COMMAND 10 400", "COMMAND 10 300", "COMMAND 10 100"};
  const Noted clickAndTyping = {"COMMAND 10 200", "COMMAND 16 0", "COMMAND 10 100", "COMMAND 10 400", "COMMAND 10 300"};
  const Noted dragAndWheel = {"MOVING", "MOVE", "MOUSEWHEEL"};
  const Noted messageBox = {"COMMAND 10 200", "COMMAND 10 100"};
  const Noted ending = {"CLOSE", "COMMAND 2 0", "COMMAND 10 200", "DESTROY", "NCDESTROY"};
  Noted expected;
  for (const Noted& part : {opening, clickAndTyping, dragAndWheel, messageBox, ending}) {
    expected.insert(expected.end(), part.begin(), part.end());
  }
  EXPECT_EQ(probe.seen, expected);
  EXPECT_FALSE(IsWindow(probe.dialog));
}

TEST(WindowCore, MeasuresInPixelsOfTheDialogFont) {
  CoreProbe probe;
  Within(probe, [](HWND dialog) {
    SetWindowPos(dialog, nullptr, 30, 40, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    RECT edit{};
    GetWindowRect(Item(dialog, IDC_EDIT), &edit);
    EXPECT_EQ(edit.left, 30 + 4 + 35);
    EXPECT_EQ(edit.bottom, 40 + 22 + 23);
    POINT inDialog{edit.left, edit.bottom};
    MapWindowPoints(nullptr, dialog, &inDialog, 1);
    EXPECT_EQ(inDialog.x, 35);
    EXPECT_EQ(inDialog.y, 23);
  });
}

TEST(WindowCore, ChoosesTheButtonForAKeyByTheFocus) {
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
      headless::Press(dialog, row.key);
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

TEST(WindowCore, MovesTheFocusInTemplateOrderPastWhatCannotTakeIt) {
  CoreProbe probe(EndOnButton);
  std::vector<int> visited;
  Within(probe, [&](HWND dialog) {
    for (int presses = 0; presses < 9; ++presses) {
      for (const int id : {10, 11, 12, 13, 14, 15, 1, 2, 16, 17}) {
        if (Item(dialog, id) == headless::FocusedControl(dialog)) visited.push_back(id);
      }
      headless::Press(dialog, Key::tab);
    }
    SendMessageA(dialog, WM_NEXTDLGCTL, 1, 0);
    EXPECT_EQ(headless::FocusedControl(dialog), Item(dialog, IDC_EDIT));
    EXPECT_EQ(headless::Record().selectedWhole, Item(dialog, IDC_EDIT));
  });
  EXPECT_EQ(visited, (std::vector<int>{10, 11, 12, 13, 14, 1, 2, 16, 10}));
}

TEST(WindowCore, ChangesACheckBoxBeforeItTellsTheDialog) {
  std::vector<LRESULT> states;
  CoreProbe probe([&](HWND, UINT message, WPARAM, LPARAM lParam) -> INT_PTR {
    if (message == WM_COMMAND) states.push_back(SendMessageA(reinterpret_cast<HWND>(lParam), BM_GETCHECK, 0, 0));
    return FALSE;
  });
  Within(probe, [&](HWND dialog) {
    for (const int id : {IDC_TWO_STATES, IDC_THREE_STATES, IDC_MANUAL_BOX}) {
      headless::Click(Item(dialog, id));
      headless::Press(dialog, Key::space);
      SendDlgItemMessageA(dialog, id, BM_CLICK, 0, 0);
    }
    headless::Click(Item(dialog, IDC_DISABLED));
    EXPECT_EQ(states, (std::vector<LRESULT>{1, 0, 1, 1, 2, 0, 0, 0, 0}));
    for (const auto& [id, largest] : {std::pair{IDC_TWO_STATES, 1}, {IDC_THREE_STATES, 2}, {IDOK, 0}}) {
      SendDlgItemMessageA(dialog, id, BM_SETCHECK, 7, 0);
      EXPECT_EQ(SendDlgItemMessageA(dialog, id, BM_GETCHECK, 0, 0), largest);
      EXPECT_EQ(headless::CheckStateShown(Item(dialog, id)), largest);
    }
  });
}

TEST(WindowCore, KeepsTextsInStepWithTheDisplay) {
  CoreProbe probe;
  Within(probe, [](HWND dialog) {
    const std::string typed = "Gr\xC3\xBC\xC3\x9F";
    headless::Type(Item(dialog, IDC_SECRET), typed);
    char text[7] = "######";
    EXPECT_EQ(SendDlgItemMessageA(dialog, IDC_SECRET, WM_GETTEXTLENGTH, 0, 0), 6);
    EXPECT_EQ(GetDlgItemTextA(dialog, IDC_SECRET, text, 7), 6u);
    EXPECT_EQ(text, typed);
    EXPECT_EQ(GetDlgItemTextA(dialog, IDOK, text, 2), 1u);
    EXPECT_STREQ(text, "O");
    EXPECT_EQ(GetDlgItemTextA(dialog, 999, text, 7), 0u);
    EXPECT_STREQ(text, "");
    SetWindowTextA(dialog, "caf\xE9");  // not valid in the code page
    EXPECT_EQ(headless::ViewOf(dialog)->title, "caf\xC3\xA9");
    EXPECT_EQ(headless::ViewOf(dialog)->controls[3].text, "&Two \xE2\x82\xAC");
  });
}

TEST(WindowCore, OpensADialogInsideADialog) {
  PlayedUser person;
  CoreProbe outer(EndOnButton);
  CoreProbe inner([&](HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
      EXPECT_EQ(GetParent(dialog), outer.dialog);
      EXPECT_EQ(GetWindow(dialog, GW_OWNER), outer.dialog);
      EXPECT_EQ(headless::ViewOf(dialog)->owner, outer.dialog);
      EXPECT_FALSE(headless::IsEnabledOnDisplay(outer.dialog));
    }
    if (message == WM_DESTROY) {
      EXPECT_TRUE(headless::IsEnabledOnDisplay(outer.dialog));
    }
    return EndOnButton(dialog, message, wParam, lParam);
  });
  person.steps = {[&](HWND dialog) {
                    EXPECT_EQ(inner.Run(IDD_PROBE, Item(dialog, IDC_EDIT)), IDOK);
                    EndDialog(dialog, 7);
                  },
                  [&](HWND dialog) {
                    headless::Click(Item(outer.dialog, IDOK));  // does not reach a disabled dialog
                    headless::CloseBox(outer.dialog);
                    headless::Press(dialog, Key::enter);
                  }};
  EXPECT_EQ(outer.Run(IDD_PROBE), 7);
  EXPECT_EQ(outer.seen, (Noted{"SETFONT", "INITDIALOG", "COMMAND 10 100", "COMMAND 10 200", "COMMAND 10 100",
                               "COMMAND 10 200", "DESTROY", "NCDESTROY"}));
}

TEST(WindowCore, LeavesNothingOfADialogWhoseHandlerDestroysItOrThrows) {
  const struct {
    UINT trigger;
    PlayedUser::Step act;
    INT_PTR result;  // when the handler destroys the dialog
  } cases[] = {
      {WM_SETFONT, {}, 0},     {WM_INITDIALOG, {}, 0}, {WM_COMMAND, {}, 0},
      {WM_CLOSE, closeBox, 0}, {WM_DESTROY, end, 1},   {WM_NCDESTROY, end, 1},
  };
  for (const auto& row : cases) {
    for (const bool throws : {false, true}) {
      SCOPED_TRACE(row.trigger);
      PlayedUser person;
      CoreProbe outer(EndOnButton);
      CoreProbe inner([&](HWND dialog, UINT message, WPARAM, LPARAM) -> INT_PTR {
        if (message == row.trigger && throws) throw std::bad_alloc();
        if (message == row.trigger) DestroyWindow(dialog);
        return TRUE;
      });
      person.steps.push_back([&](HWND dialog) {
        const auto run = [&] { EXPECT_EQ(inner.Run(IDD_PROBE, dialog), row.result); };
        if (throws) {
          EXPECT_THROW(run(), std::bad_alloc);
        } else {
          run();
        }
      });
      if (row.act) person.steps.push_back(row.act);
      person.steps.push_back(closeBox);
      EXPECT_EQ(outer.Run(IDD_PROBE), IDCANCEL);
      EXPECT_FALSE(IsWindow(inner.dialog));
      EXPECT_EQ(headless::ViewOf(inner.dialog), nullptr);
    }
  }
}

TEST(WindowCore, TakesAnInnerDialogDownWithItsOwner) {
  PlayedUser person;
  CoreProbe inner;
  CoreProbe outer;
  person.steps = {[&](HWND dialog) { EXPECT_EQ(inner.Run(IDD_PLAIN, dialog), 0); },
                  [&](HWND) { DestroyWindow(outer.dialog); }};
  EXPECT_EQ(outer.Run(IDD_PROBE), 0);
  EXPECT_EQ(inner.seen, (Noted{"INITDIALOG", "DESTROY", "NCDESTROY"}));
}

TEST(WindowCore, AnswersStaleAndUnknownHandlesWithNothing) {
  std::vector<HWND> handles = {nullptr, reinterpret_cast<HWND>(0x1234), reinterpret_cast<HWND>(~std::uintptr_t{0})};
  CoreProbe probe;
  Within(probe, [&](HWND dialog) {
    handles.insert(handles.end(), {dialog, Item(dialog, IDC_EDIT), Item(dialog, IDOK)});
  });
  const PlayedUser person;
  for (const HWND handle : handles) {
    RECT rectangle{};
    char text[10];
    EXPECT_FALSE(IsWindow(handle) || DestroyWindow(handle) || EndDialog(handle, 1));
    EXPECT_FALSE(GetWindowRect(handle, &rectangle) || SetWindowPos(handle, nullptr, 1, 1, 0, 0, SWP_NOSIZE));
    EXPECT_FALSE(SetWindowTextA(handle, "x") || GetWindowTextA(handle, text, sizeof text));
    EXPECT_FALSE(GetParent(handle) || Item(handle, IDOK) || SendMessageA(handle, WM_CLOSE, 0, 0));
    EXPECT_FALSE(SetWindowLongPtrA(handle, GWLP_USERDATA, 1) || GetWindowLongPtrA(handle, GWLP_USERDATA));
    headless::Click(handle);
    headless::Type(handle, "x");
    headless::Drag(handle, {1, 1});
    headless::Wheel(handle, 120);
  }
}

TEST(WindowCore, FailsWhereThereIsNothingToShow) {
  testing::internal::CaptureStderr();
  {
    PlayedUser person;
    EXPECT_EQ(DialogBoxParamA(nullptr, MAKEINTRESOURCEA(IDD_PROBE), nullptr, EndOnButton, 0), -1);
    EXPECT_EQ(DialogBoxParamA(GetModuleHandleA(nullptr), "by name", nullptr, EndOnButton, 0), -1);
    EXPECT_EQ(CoreProbe().Run(IDD_UNKNOWN_CONTROL), -1);
    // A display serves the thread that opened it.
    std::thread([] { EXPECT_EQ(MessageBoxA(nullptr, "from a worker", "thread", MB_OK), 0); }).join();
    EXPECT_TRUE(person.boxes.empty());
  }
  EXPECT_EQ(CoreProbe().Run(IDD_PROBE), -1);
  EXPECT_NE(GetLastError(), 0u);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "thread: from a worker\nNo display for the dialog \"Probe\": nobody plays the user\n");
}

}  // namespace
}  // namespace nvsupport
