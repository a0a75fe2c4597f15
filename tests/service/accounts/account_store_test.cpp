// The store of the accounts, the same on both databases: what it keeps, what it limits, and that nothing is lost when
// many write at a time or one is killed.
#include "service/accounts/account_store.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <functional>
#include <latch>
#include <thread>

#include "test_database.h"

namespace {

using namespace nvsupport::service;

NewAccount Wanted(const std::string& userId, const std::string& email) {
  NewAccount account;
  account.userId = userId;
  account.password = "secret";
  account.email = email;
  return account;
}

class AccountStoreTest : public AccountsTest {
 protected:
  // The number of a new account.
  std::int64_t Make(const std::string& userId) {
    EXPECT_EQ(store.Create(Wanted(userId, userId + "@norvane.example"), 0), Status::done) << userId;
    std::int64_t number = 0;
    EXPECT_EQ(store.Verify(userId, "secret", number), Status::done) << userId;
    return number;
  }

  const std::unique_ptr<Database> database = Open();
  AccountStore store{*database};
};

// Does `work` with the numbers from 0 to 7, each in a thread of its own.
void AtATime(const std::function<void(std::size_t)>& work) {
  std::vector<std::jthread> threads;
  for (std::size_t i = 0; i < 8; ++i) threads.emplace_back(work, i);
}

TEST_F(AccountStoreTest, LetsWritersHaveTheirTurns) {
  const std::int64_t account = Make("reader");
  constexpr int rounds = 12;
  std::array<std::atomic<int>, 8> turns = {};
  std::latch ready(std::ssize(turns));
  std::atomic<bool> over = false;
  AtATime([&](std::size_t i) {
    const auto connection = Open();
    AccountStore own(*connection);
    ready.arrive_and_wait();
    while (!over) {
      own.OpenSession(account, 0, 60, 1000);
      if (++turns[i] == rounds) over = true;
    }
  });
  for (const int count : turns) EXPECT_GE(count, rounds / 4) << "while another had " << rounds;
}

TEST_F(AccountStoreTest, UndoesWhatAKilledProcessLeftHalfDone) {
  const pid_t child = fork();
  if (child == 0) {
    const auto connection = Open();
    const Transaction transaction(*connection, "account 1");
    connection->Run("INSERT INTO attempt (user_key, address, answered) VALUES ($1, $2, $3)", "half", "done", 1);
    raise(SIGKILL);
  }
  EXPECT_EQ(waitpid(child, nullptr, 0), child);
  Transaction transaction(*database, "account 1");
  EXPECT_TRUE(database->Run("SELECT user_key FROM attempt").empty());
}

TEST_F(AccountStoreTest, TellsNoValueInAnError) {
  try {
    database->Run("INSERT INTO session (token_hash, account, ends) VALUES ($1, $2, $3)", "token", 123456, 1);
    ADD_FAILURE() << "a session of no account";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()).find("123456"), std::string::npos) << error.what();
  }
}

TEST_F(AccountStoreTest, EndsTheOldestOfTooManySessions) {
  const std::int64_t account = Make("reader");
  const std::int64_t other = Make("other");
  std::vector<std::string> tokens;
  for (const std::int64_t now : {1000, 1010, 1020}) tokens.push_back(store.OpenSession(account, now, 60, 2));
  tokens.push_back(store.OpenSession(other, 1000, 60, 2));
  const auto lives = [&](std::int64_t now) {
    std::string all;
    for (const std::string& token : tokens) all += store.FindSession(token, now) ? '1' : '0';
    return all;
  };
  EXPECT_EQ(lives(1021), "0111");
  EXPECT_EQ(lives(1060), "0110") << "the other account's has come to its end";
  EXPECT_EQ(lives(1070), "0010");
  EXPECT_EQ(store.FindSession(tokens[2], 1021), account);
  store.EndSessions(account);
  EXPECT_EQ(lives(1021), "0001");
}

TEST_F(AccountStoreTest, LimitsTheComputersOfAnAccount) {
  const std::int64_t account = Make("reader");
  for (std::uint32_t device = 0; device < AccountStore::mostComputers; ++device) {
    EXPECT_EQ(store.NameComputer(account, {device, "old", 0}), Status::done) << device;
  }
  EXPECT_EQ(store.NameComputer(account, {0xFFFFFFFF, "new", 0}), Status::tooManyComputers);
  EXPECT_EQ(store.NameComputer(account, {0, "renamed", 0}), Status::done);
  EXPECT_EQ(store.NameComputer(Make("other"), {0xFFFFFFFF, "of another", 0}), Status::done);
  EXPECT_FALSE(store.HasComputer(account, 0xFFFFFFFF));
  EXPECT_EQ(store.Computers(account).back().name, "renamed");
}

TEST_F(AccountsTest, MakesItsTablesAndAnAccountOnceWhenManyAskAtATime) {
  std::atomic<int> made = 0;
  std::latch ready(8);
  AtATime([&](std::size_t i) {
    const auto connection = Open();
    ready.arrive_and_wait();
    const Status status = AccountStore(*connection).Create(Wanted("u", std::to_string(i) + "@norvane.example"), 0);
    if (status == Status::done) ++made;
  });
  EXPECT_EQ(made, 1);
}

TEST_F(AccountsTest, KeepsTheAccountsOfTheFirstVersionAndRefusesOneThatIsNotMadeYet) {
  const auto database = Open();
  // That version, reduced to what the next ones build on.
  database->RunScript(R"(
      CREATE TABLE account (id INTEGER PRIMARY KEY, user_key TEXT NOT NULL UNIQUE, user_id TEXT NOT NULL);
      CREATE TABLE session (token_hash TEXT PRIMARY KEY, account INTEGER NOT NULL, ends INTEGER NOT NULL);
      INSERT INTO account VALUES (1, 'reader', 'Reader'))");
  EXPECT_EQ(AccountStore(*database).UserId(1), "Reader");
  database->RunScript("UPDATE schema_version SET version = 99");
  EXPECT_THROW(AccountStore{*database}, std::runtime_error);
}

}  // namespace
