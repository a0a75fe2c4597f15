// Dialogs on a real screen, used by a user with keyboard and mouse.
#include <gtest/gtest.h>

#include <cstdlib>
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
      : screen(xSession),
        program({NV_DIALOG_PROGRAM, "dialog", owner, times}, {{"DISPLAY", xSession.Name()}, {"WAYLAND_DISPLAY", ""}}) {
    Await();
  }

  // Until the dialog is there, for the first time or again.
  void Await() {
    std::istringstream text(Find("places"));
    Place place;
    for (int id = 0; text >> id >> place.x >> place.y;) places[id] = place;
    window = screen.Await(dialogTitle);
  }
  void OpenAgain() {
    program.WriteLine("next");
    Await();
  }

  void Hover(int id) const { screen.Hover(window, places.at(id)); }
  void Click(int id) const { screen.Click(window, places.at(id)); }
  std::string Find(const std::string& key) { return program.Find(key); }
  void ExpectEnd(const std::string& result) {
    EXPECT_EQ(Find("result"), result);
    EXPECT_EQ(program.Join(), 0);
  }

  const XSession& screen;
  Process program;
  xcb_window_t window = 0;

 private:
  std::map<int, Place> places;  // of the controls, in the dialog
};

TEST(Display, TakesWhatIsTypedAndTheDefaultButton) {
  const XSession screen;
  OpenDialog dialog(screen);
  screen.Type("Ab c!\tseCret\t \n");
  EXPECT_EQ(dialog.Find("clicked"), "1021 ");
  EXPECT_EQ(dialog.Find("clicked"), "1 ");
  EXPECT_EQ(dialog.Find("fields"), "Ab c! seCret 1 ");
  EXPECT_EQ(dialog.Find("result"), "1 ");
  EXPECT_TRUE(screen.IsGone(dialogTitle)) << "while the host goes on";
  EXPECT_EQ(dialog.Find("locale"), "C ") << "the host's own, whatever Qt chooses for itself";
}

TEST(Display, ReachesControlsByMnemonicsAndClicks) {
  const XSession screen;
  OpenDialog dialog(screen);
  screen.Do("key alt+p");
  screen.Type("pw");
  dialog.Click(IDC_SAVE_PASSWORD);
  EXPECT_EQ(dialog.Find("clicked"), "1021 ");
  screen.Do("key alt+v");
  EXPECT_EQ(dialog.Find("clicked"), "1021 ");
  dialog.Click(IDC_USER_ID);
  screen.Type("!");
  dialog.Click(okId);
  EXPECT_EQ(dialog.Find("fields"), "given! pw 0 ") << "checked and unchecked";
  dialog.ExpectEnd("1 ");
}

TEST(Display, EndsByEscCloseBoxAndTheFocusedButton) {
  const XSession screen;
  OpenDialog dialog(screen, "0x7654321", "3");  // an owner that is no window is none
  screen.Type("\033");
  EXPECT_EQ(dialog.Find("result"), "2 ");
  dialog.OpenAgain();
  screen.CloseBox(dialog.window);
  EXPECT_EQ(dialog.Find("result"), "2 ");
  dialog.OpenAgain();
  screen.Type("\t\t\t\t\t\n");  // Cancel has the focus then
  dialog.ExpectEnd("2 ");
}

TEST(Display, HoldsUpADialogThatOwnsAnother) {
  const XSession screen;
  OpenDialog dialog(screen);
  dialog.Click(IDC_CREATE_ACCOUNT);
  EXPECT_EQ(screen.OwnerOf(screen.Await(innerTitle)), dialog.window);
  dialog.Click(IDC_SAVE_PASSWORD);
  screen.CloseBox(dialog.window);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(dialog.Find("clicked"), "1020 ") << "the focus comes back to the button that had it";
    screen.Await(innerTitle);
    screen.Type("\033");
    EXPECT_EQ(dialog.Find("inner"), "2 ");
    screen.Await(dialogTitle);
    screen.Type(i == 0 ? "\n" : "\033");
  }
  EXPECT_EQ(dialog.Find("fields"), "given  0 ");
  dialog.ExpectEnd("2 ");
}

// On the second of two monitors, under the top-level window of the one that the host names.
TEST(Display, StaysWithTheHostsWindowWhereItWasDraggedTo) {
  const XSession screen(XSession::Manager::openbox);
  screen.SplitScreen();
  const Area ownerArea{{1200, 60}, 700, 650};
  const xcb_window_t owner = screen.MakeWindow(ownerArea);
  screen.Do("windowmove --sync " + std::to_string(owner) + " 1200 60");
  OpenDialog dialog(screen, std::to_string(screen.MakeWindow(Area{{5, 5}, 50, 50}, owner)), "3");
  EXPECT_EQ(screen.OwnerOf(dialog.window), owner);
  const auto offset = [&] {
    const Place from = screen.AreaOf(owner);
    const Place to = screen.AreaOf(dialog.window);
    return Place{to.x - from.x, to.y - from.y};
  };
  const Area area = screen.AreaOf(dialog.window);
  const XSession::Frame frame = screen.FrameOf(dialog.window);
  EXPECT_NEAR(offset().x, (ownerArea.width - area.width) / 2, frame.top) << "centred on the owner";
  EXPECT_NEAR(offset().y, (ownerArea.height - area.height + frame.top - frame.bottom) / 2, frame.top);

  screen.Drag(dialog.window, {area.x + area.width / 2, area.y - frame.top / 2}, {60, 40});
  const Place dragged = offset();
  for (int run = 2; run <= 3; ++run) {
    screen.Type("\033");
    EXPECT_EQ(dialog.Find("result"), "2 ");
    if (run == 2) screen.Do("windowmove --sync " + std::to_string(owner) + " 1130 90");
    dialog.OpenAgain();
    EXPECT_EQ(offset(), dragged) << "run " << run;
  }
  screen.Do("windowclose " + std::to_string(owner));  // while its dialog is open
  screen.Type("\033");
  dialog.ExpectEnd("2 ");
}

TEST(Display, ShowsTheWaitCursorInASlowExchangeOnly) {
  const XSession screen;
  OpenDialog dialog(screen);
  dialog.Hover(IDC_SAVE_PASSWORD);
  const auto arrow = screen.ShownCursor();
  dialog.Hover(IDC_USER_ID);
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
  dialog.Hover(IDC_USER_ID);
  EXPECT_NE(screen.ShownCursor(), beam) << "over the fields, too";
  dialog.Hover(IDC_HELP_PAGE);
  dialog.program.WriteLine("answer");
  EXPECT_EQ(dialog.Find("done"), "1041 ");
  EXPECT_TRUE(WaitUntil([&] { return screen.ShownCursor() == usual; })) << "once it goes on";
  screen.Type("\033");
  dialog.ExpectEnd("2 ");
}

TEST(Display, FailsWithoutAScreenSaysWhyAndTheHostLivesOn) {
  const std::pair<std::map<std::string, std::string>, const char*> screenless[] = {
      {{{"DISPLAY", ""}}, "wayland: WAYLAND_DISPLAY is not set, xcb: DISPLAY is not set; start the host in a "},
      {{{"DISPLAY", ":64999"}, {"WAYLAND_DISPLAY", "/nowhere/wayland-0"}},
       "wayland: no Wayland server answers at /nowhere/wayland-0, xcb: no X server at DISPLAY=:64999 lets this "},
      {{{"QT_QPA_PLATFORM", "nonsense"}}, "nonsense: Qt has no plugin for it in "},
      {{{"NV_JOB", "core"}}, "the host's QCoreApplication shows no widgets; it has to be a QApplication"},
      {{{"NV_JOB", "thread"}, {"QT_QPA_PLATFORM", "offscreen"}},
       "another thread has the QApplication; dialogs are for that thread"},
  };
  for (const auto& [environment, reason] : screenless) {
    const auto job = environment.find("NV_JOB");
    const std::vector<std::string> command = job == environment.end()
                                                 ? std::vector<std::string>{NV_DIALOG_PROGRAM, "dialog", "0"}
                                                 : std::vector<std::string>{NV_QT_HOST, NV_MODULE, job->second};
    Process dialog(command, environment, true);
    const std::string line = dialog.Find("No");
    EXPECT_NE(line.find(reason), std::string::npos) << line;
    EXPECT_EQ(dialog.Find("Internal"), "error: Dialog 102 failed: err=0x5b3");
    EXPECT_EQ(dialog.Join(), 0);
  }
  Process message({NV_DIALOG_PROGRAM, "message"}, screenless[0].first, true);
  EXPECT_EQ(message.Find("Caption:"), "<b>Plain</b> text");
  EXPECT_EQ(message.Find("answer"), "0 ");
}

}  // namespace
}  // namespace nvsupport::testing
