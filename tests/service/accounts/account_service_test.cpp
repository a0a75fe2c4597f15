// Operations 8 to 11: the rules on accounts, what a repeated request means, and the pace at which guesses are answered.
#include "service/accounts/account_service.h"

#include "../request.h"
#include "service/utf8.h"
#include "test_database.h"

namespace {

using namespace nvsupport::service;

class AccountServiceTest : public AccountsTest {
 protected:
  // The status of the reply to a request that comes from an address now. What the service waits goes to `waited`.
  std::uint32_t StatusOf(const std::string& request, const std::string& from = "192.0.2.1") {
    waited = 0;
    const auto wait = [this](std::int64_t seconds) { waited += seconds; };
    return WordAt(AccountService(*database, settings, {from, now, wait}).Answer(request), 0);
  }

  AccountSettings settings;
  std::int64_t now = 1'000'000;
  std::int64_t waited = 0;
  const std::unique_ptr<Database> database = Open();
};

TEST_F(AccountServiceTest, TellsTheStatusesThatTheDialogsKnow) {
  const struct {
    const char* what;
    std::string request;
    std::uint32_t status;
  } cases[] = {
      {"first account", CreateAccount("Map Reader", "six 6!six", "reader@norvane.example"), 0},
      {"same user ID under the rule", CreateAccount("map-READER", "other66", "other@norvane.example"), 2},
      {"same 16 characters", CreateAccount("abcdefghijklmnop", "secret", "a@norvane.example"), 0},
      {"more than 16 characters", CreateAccount("ABCDEFGH IJKLMNOPQRST", "secret", "b@norvane.example"), 2},
      {"five letters and digits", CreateAccount("short", "a.b.c.d.5.....", "short@norvane.example"), 3},
      {"accented letters do not count", CreateAccount("accents", "\xC3\xA9t\xC3\xA9tes", "c@norvane.example"), 3},
      {"user ID without letters", CreateAccount("--- ", "secret", "d@norvane.example"), 6},
      {"same email address", CreateAccount("another", "secret", " Reader@Norvane.EXAMPLE "), 13},
      {"no domain", CreateAccount("another", "secret", "me@home"), 14},
      {"two at signs", CreateAccount("another", "secret", "me@you@norvane.example"), 14},
      {"line feed in the address", CreateAccount("another", "secret", "me@norvane.example\nx"), 14},
      {"blank in the address", CreateAccount("another", "secret", "me @norvane.example"), 14},
      {"sign in under the rule", SignIn("MAPREADER", "SIX6six"), 0},
      {"another password", SignIn("Map Reader", "six6si"), 5},
      {"unknown user", SignIn("Map Readers", "six6six"), 4},
      {"name: another password", Int(9) + Text("mapreader") + Text("x") + Text("n") + Int(1) + Int(124) + Int(0), 5},
      {"token: another password", Int(11) + Text("mapreader") + Text("x"), 5},
      {"a text beyond its limit", SignIn(std::string(1001, 'x'), "six6six"), 1},
  };
  for (const auto& row : cases) EXPECT_EQ(StatusOf(row.request), row.status) << row.what;
}

TEST_F(AccountServiceTest, TakesTheSameNewAccountTwiceForAWhile) {
  const std::string request = CreateAccount("Reader", "secret", "reader@norvane.example");
  EXPECT_EQ(StatusOf(request), 0U);
  now += 599;
  EXPECT_EQ(StatusOf(request), 0U);
  EXPECT_EQ(StatusOf(CreateAccount("Reader", "another", "reader@norvane.example")), 2U);
  EXPECT_EQ(StatusOf(CreateAccount("Reader", "secret", "other@norvane.example")), 2U);
  EXPECT_EQ(StatusOf(SignIn("reader", "another")), 5U) << "the first password stays";
  now += 2;
  EXPECT_EQ(StatusOf(request), 2U);
}

TEST_F(AccountServiceTest, AnswersWhoGuessesSlowlyWhetherThereIsAnAccountOrNot) {
  EXPECT_EQ(StatusOf(CreateAccount("there", "secret", "reader@norvane.example")), 0U);
  for (const auto& [user, wrong] :
       {std::pair("there", " 5 5 5 5 5 5 5 20 20"), std::pair("not", " 4 4 4 4 4 4 4 20 20")}) {
    std::string statuses;
    std::string pace;
    for (int i = 0; i < 9; ++i) {
      statuses += ' ' + std::to_string(StatusOf(SignIn(user, "guess"), "192.0.2." + std::to_string(i)));
      pace += std::to_string(waited);
    }
    // Five at once, then one each two seconds; no more than two wait.
    EXPECT_EQ(statuses, wrong);
    EXPECT_EQ(pace, "000002400") << user;
    now += settings.failureSeconds + 4;
    StatusOf(SignIn(user, "guess"));
    EXPECT_EQ(waited, 0) << user << ": forgotten";
  }
}

TEST_F(AccountServiceTest, AnswersAnAddressSlowlyThatTriesManyAccounts) {
  settings.failuresPerAddress = 2;
  const struct {
    const char* from;
    std::int64_t waited;
  } guesses[] = {{"2001:db8:1:2::1", 0},  {"2001:db8:1:2::2", 0}, {"2001:db8:1:2:ffff::9", 2}, {"2001:db8:1:3::1", 0},
                 {"::ffff:192.0.2.7", 0}, {"192.0.2.7", 0},       {"::ffff:192.0.2.7", 2},     {"192.0.2.8", 0}};
  std::string user = "a";
  for (const auto& guess : guesses) {
    StatusOf(SignIn(user += 'a', "guess"), guess.from);
    EXPECT_EQ(waited, guess.waited) << user << " from " << guess.from;
  }
}

TEST_F(AccountServiceTest, ForgivesTheFailuresOfWhoSignsIn) {
  EXPECT_EQ(StatusOf(CreateAccount("reader", "secret", "reader@norvane.example")), 0U);
  for (int i = 0; i < 6; ++i) StatusOf(SignIn("reader", "guess"));
  now += 2;
  EXPECT_EQ(StatusOf(SignIn("reader", "secret")), 0U);
  EXPECT_EQ(waited, 2) << "the right password waits too";
  StatusOf(SignIn("reader", "guess"));
  EXPECT_EQ(waited, 0);
}

TEST_F(AccountServiceTest, HoldsBackFewAnswersAtATime) {
  settings.failuresPerAccount = 1;
  std::string statuses;
  for (const std::string user : {"a", "b", "c", "a", "b", "a", "b", "c"}) {
    statuses += ' ' + std::to_string(StatusOf(SignIn(user, "guess"), "192.0.2." + std::to_string(statuses.size())));
  }
  EXPECT_EQ(statuses, " 4 4 4 4 4 4 4 20");
}

TEST_F(AccountServiceTest, UnderstandsWholeRequestsOfItsOwnOperationsAlone) {
  const std::string user = Text("zomap") + Text("Secret-7");
  for (const std::string& request : {CreateAccount("zomap", "Secret-7", "a@b.c"), SignIn("zomap", "Secret-7"),
                                     Int(9) + user + Text("desk") + Int(1) + Int(124) + Int(0), Int(11) + user}) {
    std::string understood;
    for (std::size_t length = 0; length < request.size(); ++length) {
      if (StatusOf(request.substr(0, length)) != 1) understood += ' ' + std::to_string(length);
    }
    EXPECT_EQ(understood, "") << "bytes of operation " << WordAt(request, 0);
    EXPECT_EQ(StatusOf(request + '\0'), 1U) << "a byte too many behind operation " << WordAt(request, 0);
  }
  EXPECT_EQ(StatusOf(Int(12) + user), 1U);
  EXPECT_EQ(StatusOf(Int(11) + Int(0x80000000) + user), 1U);
}

TEST(AccountSettings, AreReadFromTheirVariables) {
  std::vector<std::unique_ptr<nvsupport::testing::ScopedVariable>> variables;
  for (const std::string name : {"SESSION_SECONDS", "SESSIONS_PER_ACCOUNT", "FAILURES_PER_ACCOUNT",
                                 "FAILURES_PER_ADDRESS", "FAILURE_SECONDS", "SLOW_SECONDS", "SLOW_AT_A_TIME"}) {
    variables.push_back(std::make_unique<nvsupport::testing::ScopedVariable>("NV_SERVICE_" + name,
                                                                             std::to_string(variables.size() + 1)));
  }
  const AccountSettings read = ReadAccountSettings();
  EXPECT_EQ((std::vector{read.sessionSeconds, read.sessionsPerAccount, read.failuresPerAccount, read.failuresPerAddress,
                         read.failureSeconds, read.slowSeconds, read.slowAtATime}),
            (std::vector<std::int64_t>{1, 2, 3, 4, 5, 6, 7}));
  const nvsupport::testing::ScopedVariable none("NV_SERVICE_SLOW_SECONDS", "0");
  EXPECT_THROW(ReadAccountSettings(), std::runtime_error);
}

TEST(ToUtf8, TakesWhatIsNoneForWindows1252) {
  const std::pair<std::string, const char*> cases[] = {
      {"J\u00FCrgen \u5BCC \U0001F5FA", "J\u00FCrgen \u5BCC \U0001F5FA"},
      {"\u0080 \u0800 \U00010000", "\u0080 \u0800 \U00010000"},
      {"J\xFCrgen \x80\x92\x81", "J\u00FCrgen \u20AC\u2019\u0081"},
      {"Zo\xC3", "Zo\u00C3"},
      {"\xC0\xAFx", "\u00C0\u00AFx"},                    // in more bytes than it needs
      {"\xED\xA0\x80", "\u00ED\u00A0\u20AC"},            // half of a pair
      {"\xF4\x90\x80\x80", "\u00F4\u0090\u20AC\u20AC"},  // beyond the end
      {std::string("a\0b", 3), "a\uFFFDb"},
  };
  for (const auto& [sent, kept] : cases) EXPECT_EQ(ToUtf8(sent), kept);
}

}  // namespace
