// The module with dialogs in hosts that load and unload it.
#include <gtest/gtest.h>

#include <filesystem>

#include "display/process.h"
#include "display/x_session.h"
#include "support/temporary_home.h"

namespace nvsupport::testing {
namespace {

const std::map<std::string, std::string> offScreen = {{"QT_QPA_PLATFORM", "offscreen"}};

TEST(ModuleWithDialogs, IsLoadedAgainByAHostWithoutQt) {
  XSession screen;
  Process host({NV_DIALOG_PROGRAM, "module", NV_MODULE, "4"}, screen.Environment());
  for (const char* mapped : {"00", "11", "11"}) {
    EXPECT_EQ(host.Find("loaded"), mapped) << "Qt comes with the first window and stays";
    const xcb_window_t dialog = screen.Await("Sign in to Your Account");
    screen.Type("\033");
    EXPECT_EQ(host.Find("token"), "0");
    EXPECT_EQ(host.Find("unloaded"), "0");
    EXPECT_TRUE(screen.IsGone(dialog)) << "while the host opens the next";
  }
  screen.Await("Sign in to Your Account");
  screen.End();
  EXPECT_EQ(host.Join(), 1) << "without its screen by Qt's own exit(1), which nothing can hold back";
}

// The plugin stands beside the file that the link leads to.
TEST(ModuleWithDialogs, FindItsDisplayThroughALinkOrSayWhatItLacks) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink(NV_MODULE, folder / "library.so");
  Process linked({NV_QT_HOST, folder / "library.so", "quit"}, offScreen, true);
  for (std::string line = linked.ReadLine(); !line.empty(); line = linked.ReadLine()) {
    EXPECT_FALSE(line.starts_with("No display")) << line;
  }
  std::filesystem::copy_file(NV_MODULE, folder / "nvsupport.so");
  Process lacking({NV_DIALOG_PROGRAM, "module", folder / "nvsupport.so", "1"}, {}, true);
  const std::string line = lacking.Find("No");
  EXPECT_NE(line.find((folder / "nvsupport-qt.so") + ": cannot open shared object file"), std::string::npos) << line;
  EXPECT_NE(line.find("the plugin belongs beside the library and needs Qt 6"), std::string::npos) << line;
}

TEST(ModuleWithDialogs, LeavesNothingBehindInAHostWithQt) {
  Process host({NV_QT_HOST, NV_MODULE, "cycles"}, offScreen);
  EXPECT_EQ(host.Find("widgets"), "0");
  EXPECT_EQ(host.Find("windows"), "0");
  EXPECT_LT(std::stoll("0" + host.Find("grown")), 30 * 1024) << "bytes in 30 dialogs";
  EXPECT_EQ(host.Join(), 0);
}

TEST(ModuleWithDialogs, EndTheirDialogInAHostThatIsNeverIdleOrQuits) {
  for (const char* way : {"busy", "quit", "exit"}) {
    // Of Qt's two event loops the one without GLib does not look for sleep while there is work.
    Process host({NV_QT_HOST, NV_MODULE, way}, {{"QT_QPA_PLATFORM", "offscreen"}, {"QT_NO_GLIB", "1"}});
    EXPECT_EQ(host.Find("token"), "0") << way;
    EXPECT_EQ(host.Find("quitting"), "") << way;
    EXPECT_EQ(host.Join(), 0) << way;
  }
}

}  // namespace
}  // namespace nvsupport::testing
