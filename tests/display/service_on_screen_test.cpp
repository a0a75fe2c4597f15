// What needs a real screen and the real service at once: the whole road to a session token, by keyboard alone, and the
// example host with a window.
#include <gtest/gtest.h>

#include <filesystem>

#include "display/process.h"
#include "display/x_session.h"
#include "mapshop/map_shop_reply.h"
#include "service/local_service.h"
#include "support/scripted_server.h"

namespace nvsupport::testing {
namespace {

constexpr const char* signInTitle = "Sign in to Your Account";

class OnScreen : public ::testing::Test {
 protected:
  void TypeInto(const std::string& title, const std::string& text) const {
    screen.Await(title);
    screen.Type(text);
  }

  // The host's window, once it downloads the first product that it found.
  xcb_window_t StartDownload() const {
    const xcb_window_t window = screen.Await("nvhost");
    screen.Type("\t\t\t ");  // to Search
    screen.Do("key alt+d");
    TypeInto("Download to", file + "\n");
    return window;
  }

  TemporaryHome home;
  const std::string file = home.folder / "downloaded";
  const XSession screen{XSession::Manager::openbox};
};

TEST_F(OnScreen, AnAccountIsMadeSignedIntoAndSavedByKeyboardAlone) {
  const LocalService service;
  const auto askForToken = [&](const std::string& product, const std::function<void()>& act) {
    Process host({NV_HOST, "token", "--product", product}, screen.Environment());
    act();
    EXPECT_FALSE(host.ReadLine().empty()) << product;
    EXPECT_EQ(host.Join(), 0) << product;
  };
  askForToken("First", [&] {
    TypeInto(signInTitle, std::string(7, '\t') + " ");  // from the user ID round to Create Account
    TypeInto("Create an Online Account", "Demo User\tsecret 7\tsecret 7\tA Demo User\t\tdemo@norvane.example\n");
    TypeInto("Give your Computer a Name", "\n");
  });
  askForToken("Second", [&] {
    TypeInto(signInTitle, "demo user\twrong 77\n");
    TypeInto("Account Manager", "\n");
    TypeInto(signInTitle, std::string(8, '\t') + "SECRET7\t \n");  // round to the same field; and saves the password
  });
  askForToken("Second", [] {});
}

TEST_F(OnScreen, TheHostDownloadsWhatTheSearchFoundAndOwnsTheDialogsOfTheLibrary) {
  const LocalService service;
  Process host({NV_HOST_WINDOW}, screen.Environment());
  const xcb_window_t window = StartDownload();
  EXPECT_TRUE(WaitUntil([&] { return std::filesystem::exists(file); }));
  EXPECT_EQ(ReadWholeFile(file), ReadWholeFile(service.Path("www/files/packages/nordic.nvpkg")));

  screen.Await("nvhost");
  screen.Do("key alt+t");
  const xcb_window_t signIn = screen.Await(signInTitle);
  EXPECT_EQ(screen.Property(signIn, "WM_TRANSIENT_FOR"), std::vector{window});
  screen.Type("nobody\tsecret 7\n");
  const xcb_window_t message = screen.Await("Account Manager");
  EXPECT_EQ(screen.Property(message, "WM_TRANSIENT_FOR"), std::vector{signIn});
  screen.Type("\n");
  TypeInto(signInTitle, "\033");
  EXPECT_TRUE(screen.IsGone(signIn));
  screen.CloseBox(window);
  EXPECT_EQ(host.Join(), 0);
}

TEST_F(OnScreen, TheHostStaysAwakeWhileAServerIsSilent) {
  const ScriptedServer server(
      [](const std::string& request) {
        if (request.starts_with("POST")) return HttpReply(200, ReplyWith({{"Map", 1, "", "f", 2}}, 7));
        return Reply{.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n12345", .end = Reply::End::hold};
      },
      "service.norvane.example");
  Process host({NV_HOST_WINDOW}, screen.Environment());
  const xcb_window_t window = StartDownload();
  EXPECT_TRUE(WaitUntil([&] { return std::filesystem::exists(file + ".TMP"); }));
  screen.Await("nvhost");
  screen.Do("key alt+c");
  screen.CloseBox(window);
  EXPECT_EQ(host.Join(), 0);
  EXPECT_FALSE(std::filesystem::exists(file + ".TMP"));
}

}  // namespace
}  // namespace nvsupport::testing
