// What needs a real screen and the real service at once: the whole road to a session token, by keyboard alone, and the
// example host with a window.
#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>

#include "display/process.h"
#include "display/x_session.h"
#include "mapshop/map_shop_reply.h"
#include "service/local_service.h"
#include "support/routed_server.h"

namespace nvsupport::testing {
namespace {

struct Language {
  const char* name;
  const char* signIn;
  const char* createAccount;
  const char* computerName;
  const char* caption;
};

// For the name of the test's case.
void PrintTo(const Language& language, std::ostream* out) {
  *out << language.name;
}

class AccountOnScreen : public ::testing::TestWithParam<Language> {
 protected:
  std::unique_ptr<Process> AskForToken(const std::string& product) const {
    return std::make_unique<Process>(std::vector<std::string>{NV_HOST, "token", "--product", product},
                                     std::map<std::string, std::string>{{"DISPLAY", screen.Name()}});
  }

  void TypeInto(const std::string& title, const std::string& text) const {
    screen.Await(title);
    screen.Type(text);
  }

  static void ExpectToken(Process& host) {
    EXPECT_FALSE(host.ReadLine().empty());
    EXPECT_EQ(host.Join(), 0);
  }

  TemporaryHome home;
  const LocalService service;
  const XSession screen{XSession::Manager::none};
};

TEST_P(AccountOnScreen, IsMadeSignedIntoAndSavedByKeyboardAlone) {
  const Language& texts = GetParam();
  home.WriteUserRegistry("[HKEY_CURRENT_USER\\Software\\Norvane]\n\"Language\"=\"" + std::string(texts.name) + "\"\n");
  const std::string backToTheSameField(8, '\t');

  const auto newUser = AskForToken("First");
  TypeInto(texts.signIn, std::string(7, '\t') + " ");  // from the user ID round to Create Account
  TypeInto(texts.createAccount, "Demo User\tsecret 7\tsecret 7\tA Demo User\t\tdemo@norvane.example\n");
  TypeInto(texts.computerName, "\n");
  ExpectToken(*newUser);

  const auto signsIn = AskForToken("Second");
  TypeInto(texts.signIn, "demo user\twrong 77\n");
  TypeInto(texts.caption, "\n");
  ASSERT_TRUE(screen.IsGone(texts.caption));
  TypeInto(texts.signIn, backToTheSameField + "SECRET7\t \n");  // and saves the password
  ExpectToken(*signsIn);

  const auto signedIn = AskForToken("Second");
  ExpectToken(*signedIn);
}

INSTANTIATE_TEST_SUITE_P(Languages, AccountOnScreen,
                         ::testing::Values(Language{"English", "Sign in to Your Account", "Create an Online Account",
                                                    "Give your Computer a Name", "Account Manager"},
                                           Language{"Deutsch", "Bei Ihrem Konto anmelden", "Online-Konto erstellen",
                                                    "Geben Sie Ihrem Computer einen Namen", "Kontoverwaltung"}),
                         [](const auto& language) { return std::string(language.param.name); });

TEST(HostWindow, DownloadsWhatTheSearchFoundAndOwnsTheDialogsOfTheLibrary) {
  TemporaryHome home;
  const LocalService service;
  const XSession screen(XSession::Manager::openbox);
  Process host({NV_HOST_WINDOW}, {{"DISPLAY", screen.Name()}, {"ASAN_OPTIONS", "detect_leaks=0"}});

  const std::string file = home.folder / "downloaded";
  const xcb_window_t window = screen.Await("nvhost");
  screen.Type("\t\t\t ");  // to Search
  screen.Do("key alt+d");
  screen.Await("Download to");
  screen.Type(file + "\n");
  EXPECT_TRUE(WaitUntil([&] { return std::filesystem::exists(file); }));
  EXPECT_EQ(ReadWholeFile(file), ReadWholeFile(service.Path("www/files/packages/nordic.nvpkg")));

  screen.Await("nvhost");
  screen.Do("key alt+t");
  const xcb_window_t signIn = screen.Await("Sign in to Your Account");
  EXPECT_EQ(screen.OwnerOf(signIn), window);
  screen.Type("nobody\tsecret 7\n");
  EXPECT_EQ(screen.OwnerOf(screen.Await("Account Manager")), signIn);
  screen.Type("\n");
  ASSERT_TRUE(screen.IsGone("Account Manager"));
  screen.Type("\033");
  ASSERT_TRUE(screen.IsGone("Sign in to Your Account"));
  screen.CloseBox(window);
  EXPECT_EQ(host.Join(), 0);
}

TEST(HostWindow, StaysAwakeWhileAServerIsSilent) {
  TemporaryHome home;
  const std::string file = home.folder / "file";
  const RoutedServer server(
      [](const std::string& request) {
        if (request.starts_with("POST")) return HttpReply(200, ReplyWith({{"Map", 1, "", "f", 2}}, 7).bytes);
        return Reply{.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n12345", .end = Reply::End::hold};
      },
      nullptr, "service.norvane.example");
  const XSession screen(XSession::Manager::openbox);
  Process host({NV_HOST_WINDOW}, {{"DISPLAY", screen.Name()}, {"ASAN_OPTIONS", "detect_leaks=0"}});
  const xcb_window_t window = screen.Await("nvhost");
  screen.Type("\t\t\t ");  // to Search
  screen.Do("key alt+d");
  screen.Await("Download to");
  screen.Type(file + "\n");
  EXPECT_TRUE(WaitUntil([&] { return std::filesystem::exists(file + ".TMP"); }));
  screen.Await("nvhost");
  screen.Do("key alt+c");
  screen.CloseBox(window);
  EXPECT_TRUE(screen.IsGone("nvhost"));
  EXPECT_EQ(host.Join(), 0);
  EXPECT_FALSE(std::filesystem::exists(file + ".TMP"));
}

}  // namespace
}  // namespace nvsupport::testing
