// Operations 8 to 11: the rules on accounts, what a repeated request means, and the pace at which guesses are answered.
#include "service/accounts/account_service.h"

#include "../request.h"
#include "test_database.h"

namespace {

using namespace nvsupport::service;

class AccountServiceTest : public AccountsTest {
 protected:
  // The reply to a request that comes from an address now. What the service waits goes to `waited`.
  std::string Answer(const std::string& request, const std::string& from = "192.0.2.1") {
    waited = 0;
    return AccountService(*database, settings, {from, now, [this](std::int64_t seconds) { waited += seconds; }})
        .Answer(request);
  }
  std::uint32_t StatusOf(const std::string& request, const std::string& from = "192.0.2.1") {
    return WordAt(Answer(request, from), 0);
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
      {"line feed in the address", CreateAccount("another", "secret", "me@norvane.example\nBcc: you@a.b"), 14},
      {"sign in under the rule", SignIn("MAPREADER", "SIX6six"), 0},
      {"another password", SignIn("Map Reader", "six6si"), 5},
      {"empty password", SignIn("Map Reader", ""), 5},
      {"unknown user", SignIn("Map Readers", "six6six"), 4},
      {"name: another password", Int(9) + Text("mapreader") + Text("x") + Text("n") + Int(1) + Int(124) + Int(0), 5},
      {"token: another password", Int(11) + Text("mapreader") + Text("x"), 5},
      {"unknown operation", Int(12) + Text("mapreader") + Text("six6six"), 1},
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
  for (const std::string user : {"there", "not there"}) {
    auto from = [n = 0]() mutable { return "192.0.2." + std::to_string(++n); };
    const std::uint32_t wrong = user == "there" ? 5 : 4;
    std::string pace;
    for (int i = 0; i < 9; ++i) {
      EXPECT_EQ(StatusOf(SignIn(user, "guess" + std::to_string(i)), from()), i < 7 ? wrong : 20U) << user << i;
      pace += std::to_string(waited);
    }
    // Five at once, then one each two seconds; no more than two wait.
    EXPECT_EQ(pace, "000002400") << user;
    now += settings.failureSeconds + 4;
    StatusOf(SignIn(user, "guess"), from());
    EXPECT_EQ(waited, 0) << user << ": forgotten";
  }
}

TEST_F(AccountServiceTest, AnswersAnAddressSlowlyThatTriesManyAccounts) {
  settings.failuresPerAddress = 3;
  const auto guess = [this](const std::string& user, const std::string& from) {
    StatusOf(SignIn(user, "guess"), from);
    return waited;
  };
  for (const char* user : {"a", "b", "c"}) EXPECT_EQ(guess(user, "2001:db8:1:2::1"), 0) << user;
  EXPECT_EQ(guess("d", "2001:db8:1:2:ffff::9"), 2) << "the same network";
  EXPECT_EQ(guess("e", "2001:db8:1:3::1"), 0) << "another network";
  EXPECT_EQ(guess("f", "::ffff:192.0.2.7") + guess("g", "192.0.2.7") + guess("h", "192.0.2.7"), 0);
  EXPECT_EQ(guess("i", "::ffff:192.0.2.7"), 2);
}

TEST_F(AccountServiceTest, ForgivesTheFailuresOfWhoSignsIn) {
  EXPECT_EQ(StatusOf(CreateAccount("reader", "secret", "reader@norvane.example")), 0U);
  for (int i = 0; i < 6; ++i) StatusOf(SignIn("reader", "guess"));
  EXPECT_EQ(waited, 2);
  now += 2;
  EXPECT_EQ(StatusOf(SignIn("reader", "secret")), 0U);
  EXPECT_EQ(waited, 2) << "the right password waits too";
  EXPECT_EQ(StatusOf(SignIn("reader", "guess")), 5U);
  EXPECT_EQ(waited, 0);
}

TEST_F(AccountServiceTest, HoldsBackFewAnswersAtATime) {
  settings.failuresPerAccount = 1;
  for (const std::string user : {"a", "b", "c"}) StatusOf(SignIn(user, "guess"));
  std::string statuses;
  for (const std::string user : {"a", "b", "a", "b", "c"}) {
    statuses += ' ' + std::to_string(StatusOf(SignIn(user, "guess"), "192.0.2." + std::to_string(statuses.size())));
  }
  EXPECT_EQ(statuses, " 4 4 4 4 20");
}

TEST_F(AccountServiceTest, KeepsTextsInUtf8) {
  const struct {
    const char* what;
    std::string sent;
    std::string kept;
  } cases[] = {
      {"UTF-8", "J\u00FCrgen \u5BCC \U0001F5FA", "J\u00FCrgen \u5BCC \U0001F5FA"},
      {"Windows-1252", "J\xFCrgen \x80\x92\x81", "J\u00FCrgen \u20AC\u2019\u0081"},
      {"a cut character", "Zo\xC3", "Zo\u00C3"},
      {"a character in too many bytes", "\xC0\xAFx", "\u00C0\u00AFx"},
      {"half of a pair", "\xED\xA0\x80", "\u00ED\u00A0\u20AC"},
      {"beyond the end", "\xF4\x90\x80\x80", "\u00F4\u0090\u20AC\u20AC"},
      {"a zero", std::string("a\0b", 3), "a\uFFFDb"},
  };
  std::int64_t device = 0;
  for (const auto& row : cases) {
    const std::string user = "user" + std::to_string(++device);
    EXPECT_EQ(StatusOf(CreateAccount(user + row.sent, "secret", user + "@norvane.example")), 0U) << row.what;
    const auto kept = database->Run("SELECT user_id FROM account WHERE email_key = $1", user + "@norvane.example");
    EXPECT_EQ(kept.at(0).at(0), user + row.kept) << row.what;
  }
}

TEST_F(AccountServiceTest, DoesNotUnderstandACutRequest) {
  for (const char* name : {"create-account", "sign-in", "name-computer", "session-token"}) {
    const std::string request = Example(std::string(name) + " request");
    std::size_t understood = 0;
    for (std::size_t length = 0; length < request.size(); ++length) {
      understood += StatusOf(request.substr(0, length)) == 1 ? 0 : 1;
    }
    EXPECT_EQ(understood, 0U) << name;
    EXPECT_EQ(StatusOf(request + '\0'), 1U) << name << " with a byte too many";
  }
  for (const std::uint32_t length : {0x80000000U, 0xFFFFFFFFU, 0x7FFFFFFFU, 1001U}) {
    EXPECT_EQ(StatusOf(Int(11) + Int(length) + Text("secret")), 1U) << length;
  }
}

}  // namespace
