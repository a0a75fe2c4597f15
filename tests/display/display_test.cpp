// Dialogs on a real screen, used by a user with keyboard and mouse.
#include <gtest/gtest.h>

#include <sstream>

#include "display/process.h"
#include "display/x_session.h"
#include "resources/resource_ids.h"

namespace nvsupport::testing {
namespace {

constexpr const char* dialogTitle = "Sign in to Your Account";
constexpr const char* innerTitle = "Give your Computer a Name";
constexpr int okId = 1;

// The program with its dialog open on a screen, ready for the user.
class OpenDialog {
 public:
  explicit OpenDialog(const XSession& xSession, const std::string& owner = "0", const std::string& times = "1")
      : screen(xSession), program({NV_DIALOG_PROGRAM, "dialog", owner, times}, xSession.Environment()) {
    Await();
  }

  // Until the dialog is there, for the first time or again.
  void Await() {
    std::istringstream text(Find("places"));
    Place place;
    for (int id = 0; text >> id >> place.x >> place.y;) places[id] = place;
    window = screen.Await(dialogTitle);
  }

  void PointAt(int id, const std::string& andThen = "") const {
    const Place& place = places.at(id);
    screen.Do("mousemove --window " + std::to_string(window) + " " + std::to_string(place.x) + " " +
              std::to_string(place.y) + andThen);
  }
  void Click(int id) const { PointAt(id, " click 1"); }
  std::string Find(const std::string& key) { return program.Find(key); }

  const XSession& screen;
  Process program;
  xcb_window_t window = 0;

 private:
  std::map<int, Place> places;  // of the controls, in the dialog
};

TEST(Display, ReachesControlsByKeysMnemonicsAndClicks) {
  const XSession screen;
  OpenDialog dialog(screen);
  screen.Type("Ab c!\tseCret");
  dialog.Click(IDC_SAVE_PASSWORD);
  EXPECT_EQ(dialog.Find("clicked"), "1021 ");
  screen.Do("key alt+v");
  EXPECT_EQ(dialog.Find("clicked"), "1021 ");
  screen.Type(" ");
  EXPECT_EQ(dialog.Find("clicked"), "1021 ");
  dialog.Click(IDC_USER_ID);
  screen.Type("!");
  dialog.Click(okId);
  EXPECT_EQ(dialog.Find("fields"), "Ab c!! seCret 1 ") << "checked, unchecked and checked";
  EXPECT_EQ(dialog.Find("result"), "1 ");
  EXPECT_EQ(dialog.Find("locale"), "C ") << "the host's own, whatever Qt chooses for itself";
}

TEST(Display, HoldsUpADialogThatOwnsAnother) {
  const XSession screen;
  OpenDialog dialog(screen, "0x7654321");  // an owner that is no window is none
  dialog.Click(IDC_CREATE_ACCOUNT);
  EXPECT_EQ(screen.Property(screen.Await(innerTitle), "WM_TRANSIENT_FOR"), std::vector{dialog.window});
  dialog.Click(IDC_SAVE_PASSWORD);
  screen.CloseBox(dialog.window);
  for (const char* then : {"\n", ""}) {
    EXPECT_EQ(dialog.Find("clicked"), "1020 ") << "the focus comes back to the button that had it";
    screen.Await(innerTitle);
    screen.Type("\033");
    EXPECT_EQ(dialog.Find("inner"), "2 ");
    screen.Await(dialogTitle);
    screen.Type(then);
  }
  screen.CloseBox(dialog.window);
  EXPECT_EQ(dialog.Find("fields"), "given  0 ");
  EXPECT_EQ(dialog.Find("result"), "2 ");
}

// On the second of two monitors, under the top-level window of the one that the host names.
TEST(Display, StaysWithTheHostsWindowWhereItWasDraggedTo) {
  const XSession screen(XSession::Manager::openbox);
  screen.Run("xrandr --setmonitor left 1024/270x768/200+0+0 screen");
  screen.Run("xrandr --setmonitor right 1024/270x768/200+1024+0 none");
  const Area ownerArea{{1200, 60}, 700, 650};
  const xcb_window_t owner = screen.MakeWindow(ownerArea);
  const auto moveOwner = [&](const char* to) { screen.Do("windowmove --sync " + std::to_string(owner) + to); };
  moveOwner(" 1200 60");
  OpenDialog dialog(screen, std::to_string(screen.MakeWindow(Area{{5, 5}, 50, 50}, owner)), "3");
  EXPECT_EQ(screen.Property(dialog.window, "WM_TRANSIENT_FOR"), std::vector{owner});
  const auto offset = [&] {
    const Place from = screen.AreaOf(owner);
    const Place to = screen.AreaOf(dialog.window);
    return Place{to.x - from.x, to.y - from.y};
  };
  const Area area = screen.AreaOf(dialog.window);
  std::vector<std::uint32_t> frame;  // left, right, top, bottom
  ASSERT_TRUE(WaitUntil([&] { return (frame = screen.Property(dialog.window, "_NET_FRAME_EXTENTS")).size() == 4; }));
  const int top = static_cast<int>(frame[2]);
  EXPECT_NEAR(offset().x, (ownerArea.width - area.width) / 2, top) << "centred on the owner";
  EXPECT_NEAR(offset().y, (ownerArea.height - area.height + top - static_cast<int>(frame[3])) / 2, top);

  screen.Drag(dialog.window, {area.x + area.width / 2, area.y - top / 2}, {60, 40});
  const Place dragged = offset();
  for (int run = 2; run <= 3; ++run) {
    screen.Type("\033");
    EXPECT_EQ(dialog.Find("result"), "2 ");
    if (run == 2) moveOwner(" 1130 90");
    dialog.program.WriteLine("next");
    dialog.Await();
    EXPECT_EQ(offset(), dragged) << "run " << run;
  }
  screen.Do("windowclose " + std::to_string(owner));  // while its dialog is open
  screen.Type("\033");
  EXPECT_EQ(dialog.Find("result"), "2 ");
  EXPECT_EQ(dialog.program.Join(), 0);
}

TEST(Display, ShowsTheWaitCursorInASlowExchangeOnly) {
  const XSession screen;
  OpenDialog dialog(screen);
  dialog.PointAt(IDC_SAVE_PASSWORD);
  const auto arrow = screen.ShownCursor();
  dialog.PointAt(IDC_USER_ID);
  EXPECT_TRUE(WaitUntil([&] { return screen.ShownCursor() != arrow; })) << "over a field";
  const auto beam = screen.ShownCursor();
  // The first click makes Qt choose the cursor of buttons.
  dialog.Click(IDC_FORGOT);
  EXPECT_EQ(dialog.Find("done"), "1029 ");
  const auto usual = screen.ShownCursor();
  screen.CursorChanges();
  dialog.Click(IDC_FORGOT);
  EXPECT_EQ(dialog.Find("done"), "1029 ");
  EXPECT_EQ(screen.CursorChanges(), 0) << "in a fast exchange";
  // The exchange follows a message, as after a password that was wrong.
  dialog.Click(IDC_HELP_PAGE);
  screen.Await("Caption");
  screen.Type("\n");
  EXPECT_EQ(dialog.Find("blocked"), "");
  EXPECT_TRUE(WaitUntil([&] { return screen.ShownCursor() != usual; })) << "while the thread is blocked";
  dialog.PointAt(IDC_USER_ID);
  EXPECT_NE(screen.ShownCursor(), beam) << "over the fields, too";
  dialog.PointAt(IDC_HELP_PAGE);
  dialog.program.WriteLine("answer");
  EXPECT_EQ(dialog.Find("done"), "1041 ");
  EXPECT_TRUE(WaitUntil([&] { return screen.ShownCursor() == usual; })) << "once it goes on";
}

TEST(Display, FailsWithoutAScreenSaysWhyAndTheHostLivesOn) {
  const std::vector<std::string> plainHost = {NV_DIALOG_PROGRAM, "dialog", "0", "1"};
  const struct {
    std::vector<std::string> host;
    std::map<std::string, std::string> environment;
    const char* reason;
  } cases[] = {
      {plainHost,
       {{"DISPLAY", ""}},
       "wayland: WAYLAND_DISPLAY is not set, xcb: DISPLAY is not set; start the host in a "},
      {plainHost,
       {{"DISPLAY", ":64999"}, {"WAYLAND_DISPLAY", "/nowhere/wayland-0"}},
       "wayland: no Wayland server answers at /nowhere/wayland-0, xcb: no X server at DISPLAY=:64999 lets this "},
      {plainHost, {{"QT_QPA_PLATFORM", "nonsense"}}, "nonsense: Qt has no plugin for it in "},
      {{NV_QT_HOST, NV_MODULE, "core"}, {}, "the host's QCoreApplication shows no widgets; it has to be a QAppl"},
      {{NV_QT_HOST, NV_MODULE, "thread"},
       {{"QT_QPA_PLATFORM", "offscreen"}},
       "another thread has the QApplication; dialogs are for that thread"},
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
