// The frame's dialogs, played on the headless display.
#include <gtest/gtest.h>

#include "probes.h"

namespace nvsupport {
namespace {

constexpr std::uintptr_t hostId = 0x4400001;
const HWND hostWindow = reinterpret_cast<HWND>(hostId);

// The calls that sending a message to the running dialog leads to.
Noted CallsFor(UINT message, WPARAM wParam, LPARAM lParam) {
  ProbeDialog dialog;
  Noted calls;
  Within(dialog, [&](HWND window) {
    dialog.calls.clear();
    SendMessageA(window, message, wParam, lParam);
    calls = dialog.calls;
  });
  return calls;
}

TEST(Dialog, EndsWithTheValueOfWhatTheUserDid) {
  const struct {
    const char* what;
    PlayedUser::Step act;
    INT_PTR result;
  } cases[] = {
      {"OK", PlayedUser::Clicks(IDOK), 1},
      {"Cancel", PlayedUser::Clicks(IDCANCEL), 2},
      {"close box", [](HWND window) { headless::CloseBox(window); }, 2},
      // Dialog itself does not look at the notification code.
      {"notification", [](HWND window) { SendMessageA(window, WM_COMMAND, 0x0300'0001, 0); }, 1},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.what);
    PlayedUser person;
    ProbeDialog dialog;
    person.steps = {row.act};
    EXPECT_EQ(dialog.run(nullptr), row.result);
    EXPECT_EQ(dialog.Handle(), nullptr);
    EXPECT_EQ(dialog.calls.front(), "onInitDialog");
    EXPECT_EQ(dialog.calls.back(), "onDestroy");
  }
}

TEST(Dialog, RoutesAMessageThroughBothStages) {
  EXPECT_EQ(CallsFor(WM_COMMAND, 0x0200'000D, 0), (Noted{"onCommand 13 512", "onDialogCommand 13 512"}));
  EXPECT_EQ(CallsFor(WM_NOTIFY, 5, 0), (Noted{"onNotify 5", "onDialogNotify 5"}));
  EXPECT_EQ(CallsFor(WM_TIMER, 77, 0), (Noted{"onTimer 77"}));
  EXPECT_EQ(CallsFor(WM_SIZE, 0, static_cast<LPARAM>(0xFFFF'8001u)), (Noted{"onSize 32769 65535"}));
  EXPECT_EQ(CallsFor(WM_LBUTTONDOWN, 3, 0x0007'FFFE), (Noted{"onLeftButton 0 -2 7 3"}));
  EXPECT_EQ(CallsFor(WM_LBUTTONDBLCLK, 0, static_cast<LPARAM>(0xFFF9'0002u)), (Noted{"onLeftButton 1 2 -7 0"}));
}

TEST(Dialog, WheelGoesToItsTargetAsLongAsThatLives) {
  struct Target final : Window {
    using Window::Window;
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
      if (message == WM_MOUSEWHEEL) seen.push_back(wParam);
      return Window::handleMessage(message, wParam, lParam);
    }
    std::vector<WPARAM> seen;
  };
  ProbeDialog dialog;
  const Noted itsOwn{"onDialogMessage 522"};
  const auto callsForWheel = [&] {
    dialog.calls.clear();
    SendMessageA(dialog.Handle(), WM_MOUSEWHEEL, 0x0078'0000, 0);
    return dialog.calls;
  };
  Within(dialog, [&](HWND window) {
    EXPECT_EQ(callsForWheel(), itsOwn);
    dialog.wheelTarget = GetDlgItem(window, IDC_EDIT);
    {
      const Target target(dialog.wheelTarget);
      EXPECT_EQ(callsForWheel(), Noted{});
      EXPECT_EQ(target.seen, (std::vector<WPARAM>{0x0078'0000}));
    }
    EXPECT_FALSE(IsWindow(dialog.wheelTarget)) << "a Window object takes its window with it";
    EXPECT_EQ(callsForWheel(), itsOwn);
  });
}

TEST(Dialog, ReadsAndWritesItsControls) {
  ProbeDialog dialog;
  const std::string longText(70000, 'x');
  Within(dialog, [&](HWND window) {
    EXPECT_EQ(dialog.getItemText(IDC_EDIT), "");
    dialog.setItemText(IDC_EDIT, longText);
    EXPECT_EQ(dialog.getItemText(IDC_EDIT), longText);
    for (const WPARAM state : {0u, 1u, 2u}) {
      SendDlgItemMessageA(window, IDC_THREE_STATES, BM_SETCHECK, state, 0);
      EXPECT_EQ(dialog.isChecked(IDC_THREE_STATES), state != 0);
    }
  });
}

TEST(Dialog, ThatCannotBeShownSaysSo) {
  const struct {
    std::uint32_t id;
    INT_PTR result;
    Noted told;
  } cases[] = {
      {0, 2, {}},
      {IDD_NO_TEMPLATE, -1, {"Internal error: Dialog 299 failed: err=0x716"}},
      {IDD_IN_RESOURCE_LIBRARY,
       -1,
       {"Error: Failed to load Res.dll\nPlease re-install the software",
        "Internal error: Dialog 5001 failed: err=0x716"}},
  };
  for (const auto& row : cases) {
    PlayedUser person;
    headless::Screen().foreignWindows[hostId] = {0, 0, 100, 100};
    EXPECT_EQ(Dialog(row.id).run(hostWindow), row.result);
    Noted told;
    for (const auto& box : person.boxes) {
      told.push_back(box.caption + ": " + box.text);
      EXPECT_EQ(box.type, MB_ICONERROR);
      EXPECT_EQ(box.foreignOwner, box.caption == "Internal error" ? hostId : 0);
    }
    EXPECT_EQ(told, row.told);
  }
}

}  // namespace
}  // namespace nvsupport
