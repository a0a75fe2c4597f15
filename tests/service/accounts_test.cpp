// The accounts, alike on both databases: the rules on them, what a repeated request means, the pace at which guesses
// are answered, and that nothing is lost when many write at a time.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <latch>
#include <thread>

#include "service/accounts/account_care.h"
#include "service/accounts/account_copy.h"
#include "service/accounts/account_schema.h"
#include "service/accounts/account_service.h"
#include "service/client_address.h"
#include "service/database/file_queue.h"
#include "service/database/sqlite_file.h"
#include "service/settings.h"
#include "service/utf8.h"
#include "support/temporary_home.h"
#include "support/wire_items.h"

namespace {

using namespace nvsupport::service;
using nvsupport::testing::Int;
using nvsupport::testing::ScopedVariable;
using nvsupport::testing::Text;

std::string CreateAccount(const std::string& userId, const std::string& email, const std::string& password = "secret") {
  return Int(10) + Text(userId) + Text(password) + Text("A Name") + Text("") + Text(email) + '\0' + Int(124) +
         Text("English");
}

std::string SignIn(const std::string& userId, const std::string& password, int device = 1) {
  return Int(8) + Text(userId) + Text(password) + Int(device);
}

// An empty database: on the server of NV_SERVICE_DATABASE if that is set, else in a file.
class Accounts : public testing::Test {
 protected:
  Accounts() {
    if (!server.empty()) database->RunScript("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
  }

  // A connection of its own, as each process has one.
  std::unique_ptr<Database> Open() const { return OpenDatabase(server.empty() ? folder / "accounts.sqlite" : server); }

  // The status of the reply to a request that comes from an address now; 429 if the brake refuses it.
  int StatusOf(const std::string& request, const std::string& from = "192.0.2.1") {
    const Reply reply = AccountService(*database, settings).Answer(request, {from, now});
    return reply.httpStatus == 200 ? static_cast<unsigned char>(reply.body.at(0)) : reply.httpStatus;
  }

  // The number of a new account.
  std::int64_t Make(AccountStore& store, const std::string& userId) {
    EXPECT_EQ(StatusOf(CreateAccount(userId, userId + "@norvane.example")), 0) << userId;
    return store.Find(userId, {}, now).value().account;
  }

  const nvsupport::testing::TemporaryFolder folder;
  const std::string server = Setting("NV_SERVICE_DATABASE");
  // How many rows each table has.
  static std::string RowsOf(Database& accounts) {
    std::string all;
    for (const char* table : {"account", "computer", "known_address", "session", "brake"}) {
      all += accounts.Run((std::string("SELECT count(*) FROM ") + table).c_str())[0][0] + ' ';
    }
    return all;
  }

  const std::unique_ptr<Database> database = Open();
  AccountSettings settings;
  std::int64_t now = 1'000'000;
};

TEST_F(Accounts, GetTheStatusesThatTheDialogsKnow) {
  const struct {
    const char* what;
    std::string request;
    int status;
    std::int64_t later = 0;  // seconds behind the row above
  } cases[] = {
      {"first account", CreateAccount("Map Reader", "reader@norvane.example", "six 6!six"), 0},
      {"same user ID under the rule", CreateAccount("map-READER", "other@norvane.example"), 2},
      {"same 16 characters", CreateAccount("abcdefghijklmnop", "a@norvane.example"), 0},
      {"more than 16 characters", CreateAccount("ABCDEFGH IJKLMNOPQRST", "b@norvane.example"), 2},
      {"five letters and digits", CreateAccount("short", "short@norvane.example", "a.b.c.d.5....."), 3},
      {"user ID without letters", CreateAccount("--- ", "d@norvane.example"), 6},
      {"same email address", CreateAccount("another", " Reader@Norvane.EXAMPLE "), 13},
      {"no domain", CreateAccount("another", "me@home"), 14},
      {"two at signs", CreateAccount("another", "me@you@norvane.example"), 14},
      {"line feed in the address", CreateAccount("another", "me@norvane.example\nx"), 14},
      {"blank in the address", CreateAccount("another", "me @norvane.example"), 14},
      {"sign in under the rule", SignIn("MAPREADER", "SIX6six"), 0},
      {"another password", SignIn("Map Reader", "six6si"), 5},
      {"unknown user", SignIn("Map Readers", "six6six"), 4},
      {"name: another password", Int(9) + Text("mapreader") + Text("x") + Text("n") + Int(1) + Int(124) + Int(0), 5},
      {"token: another password", Int(11) + Text("mapreader") + Text("x"), 5},
      {"a line end in a name", CreateAccount("new\nline", "line@norvane.example"), 1},
      {"and in a computer's", Int(9) + Text("mapreader") + Text("six6six") + Text("\x1B") + Int(1) + Int(0) + Int(0),
       1},
      {"a text beyond its limit", SignIn(std::string(1001, 'x'), "six6six"), 1},
      {"another account", CreateAccount("Again", "again@norvane.example"), 0},
      {"sent again in time", CreateAccount("Again", "again@norvane.example"), 0, 599},
      {"with another password", CreateAccount("Again", "again@norvane.example", "another"), 2},
      {"with another address", CreateAccount("Again", "other@norvane.example"), 2},
      {"the first password stays", SignIn("again", "another"), 5},
      {"sent again too late", CreateAccount("Again", "again@norvane.example"), 2, 2},
      {"an unknown operation", Int(12) + Text("mapreader") + Text("six6six"), 1},
  };
  for (const auto& row : cases) {
    now += row.later;
    EXPECT_EQ(StatusOf(row.request), row.status) << row.what;
    EXPECT_EQ(StatusOf(row.request + '\0'), 1) << row.what << ", with a byte too many";
    EXPECT_EQ(StatusOf(row.request.substr(0, row.request.size() - 1)), 1) << row.what << ", with a byte too few";
  }
}

TEST_F(Accounts, AreGuessedAtThePaceOfTheBrakeAndOpenToWhoIsKnown) {
  settings.failuresPerAccount = 2;
  settings.failuresPerAddress = 3;
  settings.accountsPerAddress = 1;
  settings.brakeSeconds = 60;
  const std::string home = "192.0.2.1";
  EXPECT_EQ(StatusOf(CreateAccount("there", "reader@norvane.example"), home), 0);
  EXPECT_EQ(StatusOf(Int(9) + Text("there") + Text("secret") + Text("Desk") + Int(7) + Int(124) + Int(0), home), 0);
  const auto token = [](auto user, auto password) { return Int(11) + Text(user) + Text(password); };
  const struct {
    const char* what;
    std::int64_t later;  // seconds behind the row above
    std::string request;
    std::string from;
    int status;
  } cases[] = {
      {"first guess", 0, SignIn("there", "guess", 1), "198.51.100.1", 5},
      {"second guess", 0, SignIn("there", "guess", 1), "198.51.100.2", 5},
      {"third guess", 0, SignIn("there", "guess", 1), "198.51.100.3", 429},
      {"the new account once more", 0, CreateAccount("there", "reader@norvane.example"), "198.51.100.3", 429},
      {"the right password of a stranger", 29, SignIn("there", "secret", 1), "198.51.100.4", 429},
      {"the user's device", 0, SignIn("there", "secret", 7), "198.51.100.5", 0},
      {"from where it was", 0, token("there", "secret"), "198.51.100.5", 0},
      {"the user's address", 0, SignIn("there", "secret", 8), home, 0},
      {"a guess once again", 1, SignIn("there", "guess", 1), "198.51.100.6", 5},
      {"and no further one", 0, SignIn("there", "guess", 1), "198.51.100.7", 429},
      {"guesses at the user's address", 0, token("there", "guess"), home, 5},
      {"the second", 0, token("there", "guess"), home, 5},
      {"have a limit, too", 0, token("there", "guess"), home, 429},
      {"not for the device there", 0, SignIn("there", "secret", 7), home, 0},
      {"which makes the address good", 0, token("there", "secret"), home, 0},
      {"a failure of the device", 0, SignIn("there", "guess", 7), home, 5},
      {"the second", 0, SignIn("there", "guess", 7), home, 5},
      {"is limited, too", 0, SignIn("there", "secret", 7), home, 429},
      {"a clock set back", -3600, SignIn("there", "secret", 7), home, 0},
      {"and who signs in is forgiven", 0, SignIn("there", "guess", 7), home, 5},
      {"no account: first guess", 3600, SignIn("not", "guess", 1), "198.51.100.1", 4},
      {"no account: second guess", 0, SignIn("not", "guess", 1), "198.51.100.2", 4},
      {"no account: third guess", 0, SignIn("not", "guess", 1), "198.51.100.3", 429},
      {"no account: clock set back", -3600, SignIn("not", "guess", 1), "198.51.100.4", 4},
      {"no account: and then as before", 0, SignIn("not", "guess", 1), "198.51.100.5", 429},
      {"network: first guess", 3600, SignIn("a", "guess", 1), "2001:db8:1:2::1", 4},
      {"network: second guess", 0, SignIn("b", "guess", 1), "2001:db8:1:2::2", 4},
      {"network: third guess", 0, SignIn("c", "guess", 1), "2001:db8:1:2:ffff::9", 4},
      {"network: fourth guess", 0, SignIn("d", "guess", 1), "2001:db8:1:2::3", 429},
      {"another network", 0, SignIn("d", "guess", 1), "2001:db8:1:3::1", 4},
      {"address: first guess", 0, SignIn("f", "guess", 1), "::ffff:192.0.2.77", 4},
      {"address: second guess", 0, SignIn("g", "guess", 1), "192.0.2.77", 4},
      {"address: third guess", 0, SignIn("h", "guess", 1), "192.0.2.77", 4},
      {"address: fourth guess", 0, SignIn("i", "guess", 1), "::ffff:192.0.2.77", 429},
      {"the user there is a stranger", 0, SignIn("there", "secret", 1), "192.0.2.77", 429},
      {"an account from there", 0, CreateAccount("new", "new@norvane.example"), "192.0.2.77", 0},
      {"the second", 0, CreateAccount("newer", "newer@norvane.example"), "192.0.2.77", 429},
      {"a taken user ID costs nothing", 0, CreateAccount("there", "newer@norvane.example"), "192.0.2.77", 2},
      {"new: a guess", 0, SignIn("new", "guess", 1), "203.0.113.1", 5},
      {"new: the user elsewhere", 0, SignIn("new", "secret", 1), "203.0.113.2", 0},
      {"new: forgives that guess", 0, SignIn("new", "guess", 1), "203.0.113.3", 5},
      {"new: and leaves two", 0, SignIn("new", "guess", 1), "203.0.113.4", 5},
      {"the second later", 60, CreateAccount("newer", "newer@norvane.example"), "192.0.2.77", 0},
  };
  for (const auto& row : cases) {
    now += row.later;
    EXPECT_EQ(StatusOf(row.request, row.from), row.status) << row.what;
  }
}

TEST_F(Accounts, GetANewHashWhenItsCostHasRisen) {
  AccountStore store(*database);
  const std::int64_t account = Make(store, "reader");
  // Of "secret", at the least cost there is.
  const std::string former =
      "$argon2id$v=19$m=8,t=1,p=1$bGUXmkmwVCYC5X+NMpe+Kw$7hVLiQKw/LgUlDX/2242HahTO7M28uqK1IZ+6Sn0HAg";
  database->Run("UPDATE account SET password_hash = $1 WHERE id = $2", former, account);
  EXPECT_EQ(StatusOf(SignIn("reader", "wrong")), 5);
  EXPECT_EQ(store.Find("reader", {}, now).value().passwordHash, former);
  EXPECT_EQ(StatusOf(SignIn("reader", "secret")), 0);
  EXPECT_NE(store.Find("reader", {}, now).value().passwordHash, former);
  EXPECT_EQ(StatusOf(SignIn("reader", "secret")), 0);
}

TEST_F(Accounts, LoseTheOldestOfTooManySessions) {
  AccountStore store(*database);
  const std::int64_t account = Make(store, "reader");
  const std::int64_t other = Make(store, "other");
  std::vector<std::string> tokens;
  for (const std::int64_t start : {1000, 1010, 1020}) tokens.push_back(store.OpenSession(account, start, 60, 2));
  tokens.push_back(store.OpenSession(other, 1000, 60, 2));
  const auto lives = [&](std::int64_t time) {
    std::string all;
    for (const std::string& token : tokens) all += store.FindSession(token, time) ? '1' : '0';
    return all;
  };
  EXPECT_EQ(lives(1021), "0111");
  EXPECT_EQ(lives(1060), "0110") << "the other account's has come to its end";
  EXPECT_EQ(lives(1070), "0010");
  EXPECT_EQ(store.FindSession(tokens[2], 1021), account);
  store.EndSessions(account);
  EXPECT_EQ(lives(1021), "0001");
}

TEST_F(Accounts, HaveComputersUpToALimit) {
  AccountStore store(*database);
  const std::int64_t account = Make(store, "reader");
  for (std::uint32_t device = 0; device < AccountStore::mostComputers; ++device) {
    EXPECT_EQ(store.NameComputer(account, {device, "old", 0}), Status::done) << device;
  }
  EXPECT_EQ(store.NameComputer(account, {0xFFFFFFFF, "new", 0}), Status::tooManyComputers);
  EXPECT_EQ(store.NameComputer(account, {0, "renamed", 0}), Status::done);
  EXPECT_EQ(store.NameComputer(Make(store, "other"), {0xFFFFFFFF, "of another", 0}), Status::done);
  EXPECT_FALSE(store.Find("reader", {0xFFFFFFFF, ""}, now).value().knowsDevice);
  EXPECT_EQ(store.Computers(account).back().name, "renamed");
}

TEST_F(Accounts, AreShownAndCorrectedAndLeaveNothingWhenDeleted) {
  AccountStore store(*database);
  const std::int64_t account = Make(store, "MapReader");
  store.NameComputer(account, {7, "Desk", 1});
  for (const std::int64_t seconds : {60L, 1L << 40, 1L << 60}) store.OpenSession(account, now, seconds, 3);
  for (const int device : {1, 7}) {  // a failure from the known address, and one of the known computer
    EXPECT_EQ(StatusOf(SignIn("mapreader", "guess", device)), 5);
  }
  EXPECT_EQ(StatusOf(SignIn("mapreader", "guess"), "192.0.2.2"), 5);
  EXPECT_EQ(RowsOf(*database), "1 1 1 3 5 ") << "with the brake on new accounts and on the second address";
  AccountCare care(*database, "mapreader");
  care.Correct("name", "Another Name");
  care.Correct("email", "New@Norvane.example");
  care.Correct("keep-informed", "yes");
  EXPECT_EQ(care.Show(),
            "user ID: MapReader\nname: Another Name\ncompany: \nemail: new@norvane.example\nlanguage: English\n"
            "keep informed: yes\ncreated: 1970-01-12 13:46:40 UTC\ncomputer: Desk (number 7, kind 1)\n"
            "address: 192.0.2.1, 1970-01-12 13:46:40 UTC\nsession until: 1970-01-12 13:47:40 UTC\n"
            "session until: 1099512627776 s since 1970\nsession until: 1152921504607846976 s since 1970\n");
  EXPECT_THROW(care.Correct("email", "none"), std::runtime_error);
  EXPECT_THROW(care.Correct("name", "two\nlines"), std::runtime_error);
  EXPECT_THROW(care.Correct("user_id", "x"), std::runtime_error);
  const std::string password = care.ResetPassword();
  EXPECT_EQ(RowsOf(*database), "1 1 1 0 2 ");
  EXPECT_EQ(StatusOf(SignIn("mapreader", "secret")), 5);
  EXPECT_EQ(StatusOf(SignIn("mapreader", password)), 0);
  care.Delete();
  EXPECT_EQ(RowsOf(*database), "0 0 0 0 2 ");
  EXPECT_THROW(AccountCare(*database, "mapreader"), std::runtime_error);
}

TEST_F(Accounts, AreForgottenPieceByPieceWhenTheirTimeIsOver) {
  AccountStore store(*database);
  store.OpenSession(Make(store, "reader"), now, 60, 2);
  EXPECT_EQ(StatusOf(SignIn("nobody", "guess"), "192.0.2.2"), 4);
  EXPECT_EQ(RowsOf(*database), "1 0 1 1 3 ");
  const std::pair<std::int64_t, const char*> cases[] = {
      {44, "1 0 1 1 3 "}, {45, "1 0 1 1 1 "}, {90, "1 0 1 0 0 "}, {AccountStore::networkSeconds, "1 0 0 0 0 "}};
  for (const auto& [later, rows] : cases) {
    Expire(*database, now + later, settings.brakeSeconds);
    EXPECT_EQ(RowsOf(*database), rows) << later;
  }
  EXPECT_EQ(StatusOf(SignIn("nobody", "guess"), "192.0.2.2"), 4);
  Expire(*database, now - 3600, settings.brakeSeconds);
  EXPECT_EQ(RowsOf(*database), "1 0 0 0 0 ") << "after a clock was set back";
}

TEST_F(Accounts, GoIntoABackupAndComeBackAtOnce) {
  AccountStore store(*database);
  const std::string name = "of a former version:\n\"\t'";
  EXPECT_EQ(store.Create({"first", "secret", name, "", "first@norvane.example", true, "English"}, now), Status::done);
  const std::int64_t account = store.Find("first", {}, now).value().account;
  store.NameComputer(account, {0xFFFFFFFF, "Desk", 0});
  Transaction many(*database, "accounts");
  for (int i = 0; i < 300; ++i) {  // more than are taken at a time
    database->Run(
        "INSERT INTO account SELECT $1, $2, user_id, password_hash, name, company, $3, 0, language, created"
        " FROM account WHERE id = $4",
        i, "u" + std::to_string(i), std::to_string(i), account);
  }
  many.Commit();
  EXPECT_EQ(StatusOf(SignIn("first", "secret")), 0);
  store.OpenSession(account, now, 60, 2);
  const auto rows = [](Database& accounts) {
    return std::pair(accounts.Run("SELECT * FROM account ORDER BY id"), accounts.Run("SELECT * FROM computer"));
  };
  const auto before = rows(*database);

  CopyAccounts(*OpenSnapshot(server.empty() ? folder / "accounts.sqlite" : server), *MakeBackup(folder / "backup"));
  EXPECT_EQ(std::filesystem::status(folder / "backup").permissions(), std::filesystem::perms(0600));
  EXPECT_THROW(MakeBackup(folder / "backup"), std::runtime_error) << "in the place of another";
  const auto backup = OpenBackup(folder / "backup");
  EXPECT_EQ(backup->Damage(), "");
  EXPECT_EQ(RowsOf(*backup), "301 1 1 0 0 ");
  database->Run("DELETE FROM account WHERE id = $1", 7);
  CopyAccounts(*backup, *database);
  EXPECT_EQ(rows(*database), before);
  EXPECT_EQ(RowsOf(*database), "301 1 1 0 0 ");
  const auto other = OpenDatabase(folder / "other", Patience::endless);
  CopyAccounts(*backup, *other);
  EXPECT_EQ(rows(*other), before);

  const auto newer = MakeBackup(folder / "newer");
  BringUpToDate(*newer);
  newer->RunScript("UPDATE schema_version SET version = 99");
  EXPECT_THROW(CopyAccounts(*newer, *database), std::runtime_error);
  EXPECT_EQ(rows(*database), before);
}

TEST_F(Accounts, AreAskedForAnewWhenTheServerHasEndedTheConnection) {
  if (server.empty()) GTEST_SKIP() << "SQLite has no server";
  const auto kept = Open();
  const std::string process = kept->Run("SELECT pg_backend_pid()")[0][0];
  EXPECT_TRUE(kept->IsUsable());
  database->Run("SELECT pg_terminate_backend($1::integer, 1000)", process);
  EXPECT_FALSE(kept->IsUsable());
}

TEST_F(Accounts, AreMadeOnceWhenManyAskAtATime) {
  std::atomic<int> made = 0;
  std::latch ready(8);
  const auto ask = [&](int number) {
    const auto connection = Open();
    ready.arrive_and_wait();
    AccountStore store(*connection);  // which makes the tables
    const std::string email = std::to_string(number) + "@norvane.example";
    if (store.Create({"reader", "secret", "", "", email, false, ""}, 0) == Status::done) ++made;
  };
  std::vector<std::jthread> threads;
  threads.reserve(8);
  for (int i = 0; i < 8; ++i) threads.emplace_back(ask, i);
  threads.clear();
  EXPECT_EQ(made, 1);
}

TEST_F(Accounts, KeepNoRequestWaiting) {
  const auto other = Open();
  if (server.empty()) {
    SqliteFile foreign(folder / "accounts.sqlite", SqliteFile::Mode::shared);  // of who stands in no queue
    foreign.Execute("BEGIN EXCLUSIVE");
    EXPECT_THROW(Transaction(*other, "accounts"), std::runtime_error);
    foreign.Execute("ROLLBACK");
    EXPECT_NO_THROW(Transaction(*database, "accounts"));
  }
  const Transaction held(*database, "accounts");
  EXPECT_THROW(Transaction(*other, "accounts"), std::runtime_error);
}

TEST_F(Accounts, TellNoValueInAnError) {
  const AccountStore store(*database);
  try {
    database->Run("INSERT INTO session (token_hash, account, ends) VALUES ($1, $2, $3)", "token", 123456, 1);
    ADD_FAILURE() << "a session of no account";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()).find("123456"), std::string::npos) << error.what();
  }
}

TEST_F(Accounts, OfTheFirstVersionAreKeptAndOfOneThatIsNotMadeYetRefused) {
  // That version, reduced to what the next ones build on.
  database->RunScript(R"(
      CREATE TABLE account (id INTEGER PRIMARY KEY, user_key TEXT NOT NULL UNIQUE, user_id TEXT NOT NULL);
      CREATE TABLE session (token_hash TEXT PRIMARY KEY, account INTEGER NOT NULL, ends INTEGER NOT NULL);
      INSERT INTO account VALUES (1, 'reader', 'Reader'))");
  EXPECT_EQ(AccountStore(*database).UserId(1), "Reader");
  // As a newer program of the same version does while this one runs.
  database->RunScript(
      "ALTER TABLE account ADD COLUMN later BIGINT NOT NULL DEFAULT 0; INSERT INTO schema_addition VALUES (9)");
  EXPECT_EQ(AccountStore(*database).UserId(1), "Reader");
  database->RunScript("UPDATE schema_version SET version = 99");
  EXPECT_THROW(AccountStore{*database}, std::runtime_error);
}

TEST(AccountSettings, AreReadFromTheirVariables) {
  const std::pair<const char*, std::int64_t AccountSettings::*> cases[] = {
      {"NV_SERVICE_SESSION_SECONDS", &AccountSettings::sessionSeconds},
      {"NV_SERVICE_SESSIONS_PER_ACCOUNT", &AccountSettings::sessionsPerAccount},
      {"NV_SERVICE_FAILURES_PER_ACCOUNT", &AccountSettings::failuresPerAccount},
      {"NV_SERVICE_FAILURES_PER_ADDRESS", &AccountSettings::failuresPerAddress},
      {"NV_SERVICE_ACCOUNTS_PER_ADDRESS", &AccountSettings::accountsPerAddress},
      {"NV_SERVICE_BRAKE_SECONDS", &AccountSettings::brakeSeconds},
  };
  for (const auto& [name, setting] : cases) {
    const ScopedVariable set(name, "77");
    EXPECT_EQ(ReadAccountSettings().*setting, 77) << name;
  }
  for (const char* wrong : {"0", "12x"}) {
    const ScopedVariable set("NV_SERVICE_BRAKE_SECONDS", wrong);
    EXPECT_THROW(ReadAccountSettings(), std::runtime_error) << wrong;
  }
}

TEST(ClientAddress, IsTheLastThatNoTrustedProxyHas) {
  const ScopedVariable set("NV_TRUSTED_PROXIES", "192.0.2.7, 10.0.0.0/8,2001:db8::/32");
  const struct {
    const char* peer;
    const char* forwarded;
    const char* client;
  } cases[] = {
      {"198.51.100.1", "203.0.113.5", "198.51.100.1"},
      {"192.0.2.7", "203.0.113.5", "203.0.113.5"},
      {"::ffff:10.1.2.3", "1.2.3.4, 203.0.113.5 ,10.9.9.9", "203.0.113.5"},
      {"2001:db8:5::1", "2001:db9::1", "2001:db9::1"},
      {"192.0.2.7", "", "192.0.2.7"},
      {"192.0.2.7", "203.0.113.5, no address", "192.0.2.7"},
      {"192.0.2.7", "203.0.113.5, face", "192.0.2.7"},
      {"192.0.2.6", "203.0.113.5", "192.0.2.6"},
      {"11.0.0.1", "203.0.113.5", "11.0.0.1"},
  };
  for (const auto& row : cases) EXPECT_EQ(ClientAddress(row.peer, row.forwarded), row.client) << row.peer;
}

TEST(PostgresDatabase, IsReachedOnOtherMachinesByTlsAlone) {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_GE(listener, 0);
  sockaddr_in here = {};
  here.sin_family = AF_INET;
  here.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof here;
  ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&here), size), 0);
  ASSERT_EQ(listen(listener, 1), 0);
  getsockname(listener, reinterpret_cast<sockaddr*>(&here), &size);
  const std::jthread server([listener] {
    for (int client = 0; (client = accept(listener, nullptr, nullptr)) >= 0; close(client)) {
      char wish[8];
      if (recv(client, wish, sizeof wish, MSG_WAITALL) > 0) send(client, "N", 1, MSG_NOSIGNAL);  // it has no TLS
    }
  });
  for (const std::string host : {"database.example", "localhost"}) {
    try {
      OpenDatabase("postgresql://" + host + ':' + std::to_string(ntohs(here.sin_port)) + "/nv?hostaddr=127.0.0.1");
      ADD_FAILURE() << host;
    } catch (const std::runtime_error& error) {
      const bool wantsTls = std::string(error.what()).find("SSL was required") != std::string::npos;
      EXPECT_EQ(wantsTls, host != "localhost") << error.what();
    }
  }
  shutdown(listener, SHUT_RDWR);
}

TEST(FileQueue, LetsNobodyBackInBeforeWhoWaits) {
  const nvsupport::testing::TemporaryFolder folder;
  FileQueue first(folder / "queue");
  FileQueue second(folder / "queue");
  std::string order;
  first.Enter();
  const std::jthread waiting([&] {
    second.Enter();
    order += "second ";
    second.Leave();
  });
  const int file = open((folder / "queue").c_str(), O_RDWR | O_CLOEXEC);
  // Until somebody is next, up to the time limit of the test.
  for (struct flock next = {}; next.l_type != F_WRLCK;) {
    next = {.l_type = F_RDLCK, .l_whence = SEEK_SET, .l_start = 1, .l_len = 1, .l_pid = 0};
    EXPECT_EQ(fcntl(file, F_OFD_GETLK, &next), 0);
  }
  close(file);
  first.Leave();
  first.Enter();
  order += "first";
  EXPECT_EQ(order, "second first");
  EXPECT_FALSE(second.Enter(std::chrono::milliseconds(60))) << "for ever";
  first.Leave();
  EXPECT_TRUE(second.Enter(std::chrono::milliseconds(60)));
}

TEST(ToUtf8, TakesWhatIsNoneForWindows1252) {
  const std::pair<std::string, const char*> cases[] = {
      {"J\u00FCrgen \u5BCC \U0001F5FA", "J\u00FCrgen \u5BCC \U0001F5FA"},
      {"\u0080 \u0800 \U00010000", "\u0080 \u0800 \U00010000"},
      {"J\xFCrgen \x80\x92\x81", "J\u00FCrgen \u20AC\u2019\uFFFD"},
      {"Zo\xC3", "Zo\u00C3"},
      {"\xC0\xAFx", "\u00C0\u00AFx"},                    // in more bytes than it needs
      {"\xED\xA0\x80", "\u00ED\u00A0\u20AC"},            // half of a pair
      {"\xF4\x90\x80\x80", "\u00F4\uFFFD\u20AC\u20AC"},  // beyond the end
      {std::string("a\0b", 3), "a\uFFFDb"},
  };
  for (const auto& [sent, kept] : cases) EXPECT_EQ(ToUtf8(sent), kept);
}

}  // namespace
