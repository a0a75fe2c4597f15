// The example host with a window, used on a real screen against the real service.
#include <gtest/gtest.h>

#include <filesystem>

#include "display/process.h"
#include "display/x_session.h"
#include "service/local_service.h"

namespace nvsupport::testing {
namespace {

class HostWindow : public ::testing::Test {
 protected:
  xcb_window_t Await(const std::string& title) {
    const xcb_window_t window = screen.FindWindow(title);
    EXPECT_TRUE(WaitUntil([&] { return screen.HasFocus(window); })) << title;
    return window;
  }

  const TemporaryHome home;
  const LocalService service;
  XSession screen{XSession::Manager::openbox};
  Process host{{NV_HOST_WINDOW}, {{"DISPLAY", screen.Name()}, {"ASAN_OPTIONS", "detect_leaks=0"}}};
};

TEST_F(HostWindow, DownloadsWhatTheSearchFound) {
  const std::string file = home.folder / "downloaded";
  Await("nvhost");
  screen.Type("\t\t\t ");  // to Search
  screen.TypeWithAlt('d');
  Await("Download to");
  screen.Type(file + "\n");
  EXPECT_TRUE(WaitUntil([&] { return std::filesystem::exists(file); }));
  EXPECT_EQ(ReadWholeFile(file), ReadWholeFile(service.Path("www/files/packages/nordic.nvpkg")));
}

TEST_F(HostWindow, OwnsTheDialogsOfTheLibrary) {
  const xcb_window_t window = Await("nvhost");
  screen.TypeWithAlt('t');
  const xcb_window_t signIn = Await("Sign in to Your Account");
  EXPECT_EQ(screen.OwnerOf(signIn), window);
  screen.Type("nobody\tsecret 7\n");
  EXPECT_EQ(screen.OwnerOf(Await("Account Manager")), signIn);
  screen.Type("\n");
  ASSERT_TRUE(screen.IsGone("Account Manager"));
  screen.Type("\033");
  ASSERT_TRUE(screen.IsGone("Sign in to Your Account"));
  screen.CloseBox(window);
  EXPECT_EQ(host.Join(), 0);
}

}  // namespace
}  // namespace nvsupport::testing
