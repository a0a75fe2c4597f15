// Dialogs on a real screen, used by a user with keyboard and mouse.
#include <gtest/gtest.h>

#include <cstdlib>

#include "display/process.h"
#include "display/x_session.h"

namespace nvsupport::testing {
namespace {

constexpr const char* dialogTitle = "Sign in to Your Account";
constexpr const char* innerTitle = "Give your Computer a Name";

// Places in the dialog, in its units.
constexpr Place userId{120, 70};
constexpr Place savePassword{100, 109};
constexpr Place createAccount{120, 26};
constexpr Place forgot{170, 138};
constexpr Place helpPage{40, 138};

// The program with its dialog open on a screen, ready for the user.
class OpenDialog {
 public:
  explicit OpenDialog(const XSession& xSession, const std::string& owner = "0", const std::string& times = "1")
      : screen(xSession), program({NV_DIALOG_PROGRAM, "dialog", owner, times}, xSession.Environment()) {
    Await();
  }

  // Until the dialog is there, for the first time or again.
  void Await() {
    Find("open");
    window = screen.Await(dialogTitle);
  }

  void PointAt(Place place, const std::string& andThen = "") const {
    const Area area = screen.AreaOf(window);
    screen.Do("mousemove --window " + std::to_string(window) + " " + std::to_string(place.x * area.width / 295) + " " +
              std::to_string(place.y * area.height / 162) + andThen);
  }
  void Click(Place place) const { PointAt(place, " click 1"); }
  std::string Find(const std::string& key) const { return program.Find(key); }

  const XSession& screen;
  Process program;
  xcb_window_t window = 0;
};

TEST(Display, HoldsUpADialogThatOwnsAnother) {
  const XSession screen;
  const OpenDialog dialog(screen, "0x7654321");  // an owner that is no window is none
  EXPECT_FALSE(screen.Property(dialog.window, "_NET_WM_ICON").empty());
  std::vector<std::uint32_t> hints = screen.Property(dialog.window, "_MOTIF_WM_HINTS");  // which count, functions, ...
  hints.resize(4);
  EXPECT_EQ(hints[0] & 1, 1u);
  EXPECT_EQ(hints[1] & (1 | 8 | 16), 0u) << "neither all, nor to be minimised, nor to be maximised";
  screen.Do("key alt+v");
  EXPECT_EQ(dialog.Find("clicked"), "1021 ");
  dialog.Click(createAccount);
  EXPECT_EQ(dialog.Find("clicked"), "1020 ");
  EXPECT_EQ(screen.Property(screen.Await(innerTitle), "WM_TRANSIENT_FOR"), std::vector{dialog.window});
  dialog.Click(savePassword);
  screen.CloseBox(dialog.window);
  screen.Type("\033");
  EXPECT_EQ(dialog.Find("inner"), "2 ");
  screen.Await(dialogTitle);
  screen.Type("\n");
  EXPECT_EQ(dialog.Find("clicked"), "1020 ") << "the focus came back to the button that had it";
  screen.Await(innerTitle);
  screen.Type("\033");
  screen.Await(dialogTitle);
  screen.CloseBox(dialog.window);
  EXPECT_EQ(dialog.Find("fields"), "given  1 ");
  EXPECT_EQ(dialog.Find("result"), "2 ");
  EXPECT_EQ(dialog.Find("locale"), "C ") << "the host's own, whatever Qt chooses for itself";
}

// On the second of two monitors, under the top-level window of the one that the host names.
TEST(Display, StaysWithTheHostsWindowWhereItWasDraggedTo) {
  const XSession screen(XSession::Manager::openbox);
  screen.Run("xrandr --setmonitor left 1024/270x768/200+0+0 screen");
  screen.Run("xrandr --setmonitor right 1024/270x768/200+1024+0 none");
  const Area ownerArea{{1200, 60}, 700, 650};
  const xcb_window_t owner = screen.MakeWindow(ownerArea);
  const auto moveOwner = [&](int x, int y) {
    screen.Do("windowmove " + std::to_string(owner) + " " + std::to_string(x) + " " + std::to_string(y));
    EXPECT_TRUE(WaitUntil([&] { return std::abs(screen.AreaOf(owner).x - x) < 30; })) << "the owner at " << x;
  };
  moveOwner(1200, 60);
  OpenDialog dialog(screen, std::to_string(screen.MakeWindow(Area{{5, 5}, 50, 50}, owner)), "3");
  EXPECT_EQ(screen.Property(dialog.window, "WM_TRANSIENT_FOR"), std::vector{owner});
  const auto offset = [&] {
    const Place from = screen.AreaOf(owner);
    const Place to = screen.AreaOf(dialog.window);
    return Place{to.x - from.x, to.y - from.y};
  };
  std::vector<std::uint32_t> frame;  // left, right, top, bottom
  ASSERT_TRUE(WaitUntil([&] { return (frame = screen.Property(dialog.window, "_NET_FRAME_EXTENTS")).size() == 4; }));
  const int top = static_cast<int>(frame[2]);
  const Area area = screen.AreaOf(dialog.window);
  const int centredX = (ownerArea.width - area.width) / 2;
  const int centredY = (ownerArea.height - area.height + top - static_cast<int>(frame[3])) / 2;
  const auto isNear = [top](int value, int expected) { return std::abs(value - expected) <= top; };
  EXPECT_TRUE(WaitUntil([&] { return isNear(offset().x, centredX) && isNear(offset().y, centredY); })) << "centred";

  const Area opened = screen.AreaOf(dialog.window);
  screen.Drag(dialog.window, {opened.x + opened.width / 2, opened.y - top / 2}, {60, 40});
  const Place dragged = offset();
  for (int run = 2; run <= 3; ++run) {
    screen.Type(run == 2 ? "\t\t\t\t\t\n" : "\033");  // Cancel has the focus then
    EXPECT_EQ(dialog.Find("result"), "2 ");
    if (run == 2) moveOwner(1130, 90);
    dialog.program.WriteLine("next");
    dialog.Await();
    EXPECT_TRUE(WaitUntil([&] { return offset() == dragged; })) << "run " << run;
  }
  screen.Do("windowclose " + std::to_string(owner));  // while its dialog is open
  screen.Type("\033");
  EXPECT_EQ(dialog.Find("result"), "2 ");
  EXPECT_EQ(dialog.program.Join(), 0);
}

TEST(Display, ShowsTheWaitCursorWhileTheThreadIsBlocked) {
  const XSession screen;
  const OpenDialog dialog(screen);
  // The first click makes Qt choose the cursor of buttons. The exchange follows a message, as after a wrong password.
  for (int i = 0; i < 2; ++i) {
    dialog.Click(forgot);
    EXPECT_EQ(dialog.Find("done"), "1029 ");
  }
  const auto usual = screen.ShownCursor();
  dialog.Click(helpPage);
  screen.Await("Caption");
  screen.Type("\n");
  EXPECT_EQ(dialog.Find("blocked"), "");
  const auto isOther = [&] { return screen.ShownCursor() != usual && screen.ShownCursor().size() > 1; };
  EXPECT_TRUE(WaitUntil(isOther)) << "while the thread is blocked";
  dialog.PointAt(userId);
  const auto overField = screen.ShownCursor();
  dialog.program.WriteLine("answer");
  EXPECT_EQ(dialog.Find("done"), "1041 ");
  EXPECT_TRUE(WaitUntil([&] { return screen.ShownCursor() != overField; })) << "it was there over the fields, too";
  dialog.PointAt(helpPage);
  EXPECT_TRUE(WaitUntil([&] { return screen.ShownCursor() == usual; })) << "once it goes on";
}

TEST(Display, FailsWithoutAScreenSaysWhyAndTheHostLivesOn) {
  const std::vector<std::string> plain = {NV_DIALOG_PROGRAM, "dialog", "0", "1"};
  const struct {
    std::vector<std::string> host;
    std::map<std::string, std::string> environment;
    const char* reason;
  } cases[] = {
      {plain, {}, "wayland: WAYLAND_DISPLAY is not set, xcb: DISPLAY is not set; start the host in a "},
      {plain, {{"DISPLAY", ":64999"}}, "xcb: no X server at DISPLAY=:64999 lets this "},
      {plain, {{"WAYLAND_DISPLAY", "/nowhere/socket"}}, "wayland: no Wayland server answers at /nowhere/socket, xcb: "},
      {plain, {{"QT_QPA_PLATFORM", "nonsense"}}, "nonsense: Qt has no plugin for it in "},
      {{NV_QT_HOST, NV_MODULE, "core"}, {}, "the host's QCoreApplication shows no widgets; it has to be a QAppl"},
      {{NV_QT_HOST, NV_MODULE, "thread"},
       {{"QT_QPA_PLATFORM", "offscreen"}},
       "another thread has the QApplication; dialogs are for that "},
  };
  for (const auto& row : cases) {
    Process dialog(row.host, row.environment, true);
    const std::string line = dialog.Find("No");
    EXPECT_NE(line.find(row.reason), std::string::npos) << line;
    EXPECT_EQ(dialog.Find("Internal"), "error: Dialog 102 failed: err=0x5b3") << row.reason;
    EXPECT_EQ(dialog.Join(), 0) << row.reason;
  }
}

}  // namespace
}  // namespace nvsupport::testing
