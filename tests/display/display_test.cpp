// Dialogs on a real screen, used by a user with keyboard and mouse.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <sstream>

#include "display/process.h"
#include "display/x_session.h"
#include "resources/resource_ids.h"

namespace nvsupport::testing {
namespace {

constexpr const char* dialogTitle = "Sign in to Your Account";
constexpr const char* innerTitle = "Give your Computer a Name";
constexpr int okId = 1;
constexpr int cancelId = 2;

std::map<std::string, std::string> OnScreen(const XSession& screen) {
  return {{"DISPLAY", screen.Name()}, {"WAYLAND_DISPLAY", ""}};
}

// The program with its dialog open on a screen, ready for the user.
class OpenDialog {
 public:
  explicit OpenDialog(XSession& xSession, const std::string& owner = "0", const std::string& times = "1")
      : screen(xSession), program({NV_DIALOG_PROGRAM, "dialog", owner, times}, OnScreen(xSession)) {
    Await();
  }

  // Until the dialog is there, for the first time or again.
  void Await() {
    std::istringstream text(program.Find("places"));
    Place place;
    for (int id = 0; text >> id >> place.x >> place.y;) places[id] = place;
    window = screen.FindWindow(dialogTitle);
    EXPECT_TRUE(WaitUntil([this] { return screen.HasFocus(window); }));
  }

  Place On(int id) const {
    const Place origin = screen.AreaOf(window);
    return {origin.x + places.at(id).x, origin.y + places.at(id).y};
  }
  void Click(int id) { screen.Click(On(id)); }
  std::string Find(const std::string& key) { return program.Find(key); }

  XSession& screen;
  Process program;
  xcb_window_t window = 0;

 private:
  std::map<int, Place> places;  // of the controls, in the dialog
};

TEST(Display, TakesWhatIsTypedAndTheDefaultButton) {
  XSession screen(XSession::Manager::none);
  OpenDialog dialog(screen);
  screen.Type("Ab c!\tseCret\t \n");
  EXPECT_EQ(dialog.Find("clicked"), "1021 ");
  EXPECT_EQ(dialog.Find("clicked"), "1 ");
  EXPECT_EQ(dialog.Find("user"), "Ab c! ");
  EXPECT_EQ(dialog.Find("password"), "seCret ");
  EXPECT_EQ(dialog.Find("save"), "1 ");
  EXPECT_EQ(dialog.Find("result"), "1 ");
  EXPECT_TRUE(screen.IsGone(dialogTitle)) << "while the host goes on";
  EXPECT_EQ(dialog.Find("locale"), "C ") << "the host's own, whatever Qt chooses for itself";
  EXPECT_EQ(dialog.program.Join(), 0);
}

TEST(Display, ReachesControlsByMnemonicsAndClicks) {
  XSession screen(XSession::Manager::none);
  OpenDialog dialog(screen);
  screen.TypeWithAlt('p');
  screen.Type("pw");
  dialog.Click(IDC_SAVE_PASSWORD);
  EXPECT_EQ(dialog.Find("clicked"), "1021 ");
  screen.TypeWithAlt('v');
  EXPECT_EQ(dialog.Find("clicked"), "1021 ");
  dialog.Click(IDC_USER_ID);
  screen.Type("!");
  dialog.Click(okId);
  EXPECT_EQ(dialog.Find("clicked"), "1 ");
  EXPECT_EQ(dialog.Find("user"), "given! ");
  EXPECT_EQ(dialog.Find("password"), "pw ");
  EXPECT_EQ(dialog.Find("save"), "0 ") << "checked and unchecked";
  EXPECT_EQ(dialog.Find("result"), "1 ");
}

TEST(Display, EndsByEscCloseBoxAndTheFocusedButton) {
  XSession screen(XSession::Manager::none);
  OpenDialog dialog(screen, "0", "3");
  const std::function<void()> ways[] = {
      [&] { screen.Type("\033"); }, [&] { screen.CloseBox(dialog.window); },
      [&] { screen.Type("\t\t\t\t\t\n"); },  // Cancel has the focus then
  };
  for (const auto& end : ways) {
    if (&end != ways) {
      dialog.program.WriteLine("next");
      dialog.Await();
    }
    end();
    EXPECT_EQ(dialog.Find("result"), "2 ");
  }
}

TEST(Display, HoldsUpADialogThatOwnsAnother) {
  XSession screen(XSession::Manager::none);
  OpenDialog dialog(screen);
  dialog.Click(IDC_CREATE_ACCOUNT);
  const xcb_window_t inner = screen.FindWindow(innerTitle);
  EXPECT_EQ(screen.OwnerOf(inner), dialog.window);
  EXPECT_TRUE(WaitUntil([&] { return screen.HasFocus(inner); }));
  dialog.Click(IDC_SAVE_PASSWORD);
  screen.CloseBox(dialog.window);
  screen.Type("\033");
  EXPECT_EQ(dialog.Find("clicked"), "1020 ");
  EXPECT_EQ(dialog.Find("inner"), "2 ");
  EXPECT_TRUE(WaitUntil([&] { return screen.HasFocus(dialog.window); }));
  screen.Type("\n");
  EXPECT_EQ(dialog.Find("clicked"), "1020 ") << "the focus is back on the button that had it";
  screen.FindWindow(innerTitle);
  EXPECT_TRUE(WaitUntil([&] { return !screen.HasFocus(dialog.window); }));
  screen.Type("\033");
  EXPECT_EQ(dialog.Find("inner"), "2 ");
  EXPECT_TRUE(WaitUntil([&] { return screen.HasFocus(dialog.window); }));
  screen.Type("\033");
  EXPECT_EQ(dialog.Find("save"), "0 ");
  EXPECT_EQ(dialog.Find("result"), "2 ");
}

TEST(Display, ReopensAtTheOffsetThatItWasDraggedTo) {
  XSession screen(XSession::Manager::openbox);
  const xcb_window_t owner = screen.MakeWindow(Area{{300, 250}, 420, 380});
  OpenDialog dialog(screen, std::to_string(owner), "3");
  const auto offset = [&] {
    const Place from = screen.AreaOf(owner);
    const Place to = screen.AreaOf(dialog.window);
    return Place{to.x - from.x, to.y - from.y};
  };
  const Area area = screen.AreaOf(dialog.window);
  screen.Drag(dialog.window, {area.x + area.width / 2, area.y - 8}, {-60, 110});
  const Place dragged = offset();
  screen.Type("\033");
  EXPECT_EQ(dialog.Find("result"), "2 ");

  screen.MoveWindow(owner, {380, 180});
  for (int run = 2; run <= 3; ++run) {
    dialog.program.WriteLine("next");
    dialog.Await();
    EXPECT_EQ(offset(), dragged) << "run " << run;
    screen.Type("\033");
    EXPECT_EQ(dialog.Find("result"), "2 ");
  }
}

TEST(Display, StaysAboveTheHostsWindowAndCentredOnIt) {
  XSession screen(XSession::Manager::openbox);
  const xcb_window_t owner = screen.MakeWindow(Area{{100, 100}, 800, 600});
  OpenDialog dialog(screen, std::to_string(owner));
  EXPECT_EQ(screen.OwnerOf(dialog.window), owner);
  const Area host = screen.AreaOf(owner);
  const Area area = screen.AreaOf(dialog.window);
  const auto aside = [](int start, int length, int hostStart, int hostLength) {
    return std::abs(2 * (start - hostStart) + length - hostLength) / 2;
  };
  EXPECT_LE(aside(area.x, area.width, host.x, host.width), 8);
  EXPECT_LE(aside(area.y, area.height, host.y, host.height), 20) << "half a caption lower";
  screen.Click({host.x + 10, host.y + 10});
  EXPECT_TRUE(screen.IsAbove(dialog.window, owner));
  // The host's window goes while its dialog is open.
  screen.DestroyWindow(owner);
  dialog.Click(cancelId);
  EXPECT_EQ(dialog.Find("result"), "2 ");
  EXPECT_EQ(dialog.program.Join(), 0);
}

TEST(Display, HasNoOwnerForAnIdThatIsNoWindow) {
  XSession screen(XSession::Manager::none);
  OpenDialog dialog(screen, "0x7654321");
  screen.Type("\033");
  EXPECT_EQ(dialog.Find("result"), "2 ");
  EXPECT_EQ(dialog.program.Join(), 0);
}

TEST(Display, ShowsTheWaitCursorInASlowExchangeOnly) {
  XSession screen(XSession::Manager::none);
  OpenDialog dialog(screen);
  // The first click makes Qt choose the cursor of buttons.
  dialog.Click(IDC_FORGOT);
  EXPECT_EQ(dialog.Find("done"), "1029 ");
  const auto usual = screen.ShownCursor();
  screen.WatchCursor();
  dialog.Click(IDC_FORGOT);
  EXPECT_EQ(dialog.Find("done"), "1029 ");
  EXPECT_EQ(screen.CursorChanges(), 0) << "in a fast exchange";
  dialog.Click(IDC_HELP_PAGE);
  EXPECT_EQ(dialog.Find("blocked"), "");
  EXPECT_TRUE(WaitUntil([&] { return screen.ShownCursor() != usual; })) << "while the thread is blocked";
  dialog.program.WriteLine("answer");
  EXPECT_EQ(dialog.Find("done"), "1041 ");
  EXPECT_TRUE(WaitUntil([&] { return screen.ShownCursor() == usual; })) << "once it goes on";
  screen.Type("\033");
  EXPECT_EQ(dialog.Find("result"), "2 ");
  EXPECT_EQ(dialog.program.Join(), 0);
}

TEST(Display, ShowsAMessageUntilItIsAnswered) {
  XSession screen(XSession::Manager::none);
  Process program({NV_DIALOG_PROGRAM, "message"}, OnScreen(screen));
  const xcb_window_t box = screen.FindWindow("Caption");
  EXPECT_TRUE(WaitUntil([&] { return screen.HasFocus(box); }));
  screen.Type("\n");
  EXPECT_EQ(program.Find("answer"), "1 ");
}

TEST(Display, FailsWithoutAScreenAndTheHostLivesOn) {
  const std::map<std::string, std::string> screenless[] = {
      {{"DISPLAY", ""}},
      {{"DISPLAY", ":64999"}, {"WAYLAND_DISPLAY", "/nowhere/wayland-0"}},
      {{"QT_QPA_PLATFORM", "nonsense"}},
      {{"QT_QPA_PLATFORM", "xcb;nonsense"}, {"DISPLAY", ":64999"}},
  };
  for (const auto& environment : screenless) {
    Process dialog({NV_DIALOG_PROGRAM, "dialog", "0"}, environment, true);
    EXPECT_EQ(dialog.Find("No"), std::string("display for the dialog \"") + dialogTitle + "\"");
    EXPECT_EQ(dialog.Find("Internal"), "error: Dialog 102 failed: err=0x5b3");
    EXPECT_EQ(dialog.Find("result"), "-1 ");
    EXPECT_EQ(dialog.Join(), 0);
    Process message({NV_DIALOG_PROGRAM, "message"}, environment, true);
    EXPECT_EQ(message.Find("Caption:"), "<b>Plain</b> text");
    EXPECT_EQ(message.Find("answer"), "0 ");
    EXPECT_EQ(message.Join(), 0);
  }
}

}  // namespace
}  // namespace nvsupport::testing
