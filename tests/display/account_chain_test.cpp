// The whole road to a session token as a user goes it: the real dialogs on a real screen, by keyboard alone, against
// the real service.
#include <gtest/gtest.h>

#include <ostream>

#include "display/process.h"
#include "display/x_session.h"
#include "service/local_service.h"

namespace nvsupport::testing {
namespace {

constexpr std::size_t longestToken = 19;

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
  void SetUp() override {
    home.WriteUserRegistry(std::string("[HKEY_CURRENT_USER\\Software\\Norvane]\n\"Language\"=\"") + GetParam().name +
                           "\"\n");
  }

  std::unique_ptr<Process> AskForToken(const std::string& product) const {
    return std::make_unique<Process>(std::vector<std::string>{NV_HOST, "token", "--product", product},
                                     std::map<std::string, std::string>{{"DISPLAY", screen.Name()}});
  }

  // Waits for a window and types into it.
  void TypeInto(const std::string& title, const std::string& text) {
    const xcb_window_t window = screen.FindWindow(title);
    ASSERT_TRUE(WaitUntil([&] { return screen.HasFocus(window); })) << title;
    screen.Type(text);
  }

  static void ExpectToken(Process& host) {
    const std::string token = host.ReadLine();
    EXPECT_FALSE(token.empty());
    EXPECT_LE(token.size(), longestToken);
    EXPECT_EQ(host.Join(), 0);
  }

  const TemporaryHome home;
  const LocalService service;
  XSession screen{XSession::Manager::none};
};

TEST_P(AccountOnScreen, IsMadeSignedIntoAndSavedByKeyboardAlone) {
  const Language& texts = GetParam();
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

}  // namespace
}  // namespace nvsupport::testing
