#include "service/accounts/account_store.h"

#include "service/accounts/account_rules.h"

namespace nvsupport::service {
namespace {

constexpr std::int64_t schemaVersion = 1;

// The journal is SQLite's plain one: each CGI process opens and closes the file, and a write-ahead log that is folded
// back at every closing gains nothing.
constexpr const char* schema = R"(
  CREATE TABLE account (
    id INTEGER PRIMARY KEY,
    user_key TEXT NOT NULL UNIQUE,
    user_id TEXT NOT NULL,
    password_hash TEXT NOT NULL,
    name TEXT NOT NULL,
    company TEXT NOT NULL,
    email_key TEXT NOT NULL UNIQUE,
    keep_informed INTEGER NOT NULL,
    language TEXT NOT NULL,
    created INTEGER NOT NULL);
  CREATE TABLE computer (
    account INTEGER NOT NULL REFERENCES account(id),
    device INTEGER NOT NULL,
    name TEXT NOT NULL,
    platform INTEGER NOT NULL,
    PRIMARY KEY (account, device));
  CREATE TABLE session (
    token_hash TEXT PRIMARY KEY,
    account INTEGER NOT NULL REFERENCES account(id),
    ends INTEGER NOT NULL);
  PRAGMA user_version = 1;
)";

std::int64_t SchemaVersion(const Database& database) {
  Statement version(database, "PRAGMA user_version");
  return version.Step() ? version.Number(0) : 0;
}

bool HasRow(const Database& database, const char* sql, const std::string& key) {
  return Statement(database, sql, key).Step();
}

}  // namespace

AccountStore::AccountStore(const std::string& path) : database(path) {
  StartCryptography();
  if (SchemaVersion(database) == schemaVersion) return;
  Transaction transaction(database);
  // Another process may have been quicker.
  if (SchemaVersion(database) != schemaVersion) database.Execute(schema);
  transaction.Commit();
}

Status AccountStore::Create(const NewAccount& account, std::int64_t now) {
  const std::string userKey = CredentialKey(account.userId);
  const std::string passwordKey = CredentialKey(account.password);
  const std::string emailKey = EmailKey(account.email);
  if (userKey.empty()) return Status::noUserId;
  if (passwordKey.size() < shortestPassword) return Status::passwordTooShort;
  if (emailKey.empty()) return Status::invalidEmail;
  const std::string hash = HashPassword(passwordKey);  // before the lock: it takes its time

  Transaction transaction(database);
  if (HasRow(database, "SELECT 1 FROM account WHERE user_key = ?", userKey)) return Status::userIdInUse;
  if (HasRow(database, "SELECT 1 FROM account WHERE email_key = ?", emailKey)) return Status::emailInUse;
  Statement(database,
            "INSERT INTO account (user_key, user_id, password_hash, name, company, email_key, keep_informed, language,"
            " created) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)",
            userKey, account.userId, hash, account.name, account.company, emailKey, std::int64_t{account.keepInformed},
            account.language, now)
      .Step();
  transaction.Commit();
  return Status::done;
}

Status AccountStore::Verify(const std::string& userId, const std::string& password, std::int64_t& account) const {
  Statement found(database, "SELECT id, password_hash FROM account WHERE user_key = ?", CredentialKey(userId));
  if (!found.Step()) return Status::wrongUserId;
  if (!MatchesPassword(found.Text(1), CredentialKey(password))) return Status::wrongPassword;
  account = found.Number(0);
  return Status::done;
}

bool AccountStore::HasComputer(std::int64_t account, std::uint32_t device) const {
  return Statement(database, "SELECT 1 FROM computer WHERE account = ? AND device = ?", account, std::int64_t{device})
      .Step();
}

Status AccountStore::NameComputer(std::int64_t account, const Computer& computer) {
  Transaction transaction(database);
  Statement count(database, "SELECT count(*) FROM computer WHERE account = ? AND device <> ?", account,
                  std::int64_t{computer.device});
  if (count.Step() && count.Number(0) >= mostComputers) return Status::tooManyComputers;
  Statement(database, "INSERT OR REPLACE INTO computer (account, device, name, platform) VALUES (?, ?, ?, ?)", account,
            std::int64_t{computer.device}, computer.name, std::int64_t{computer.platform})
      .Step();
  transaction.Commit();
  return Status::done;
}

std::vector<Computer> AccountStore::Computers(std::int64_t account) const {
  std::vector<Computer> computers;
  Statement row(database, "SELECT device, name, platform FROM computer WHERE account = ? ORDER BY name", account);
  while (row.Step()) {
    computers.push_back(
        {static_cast<std::uint32_t>(row.Number(0)), row.Text(1), static_cast<std::uint32_t>(row.Number(2))});
  }
  return computers;
}

std::string AccountStore::OpenSession(std::int64_t account, std::int64_t now, std::int64_t lifetime) {
  std::string token = NewToken();
  Transaction transaction(database);
  Statement(database, "DELETE FROM session WHERE ends <= ?", now).Step();
  Statement(database, "INSERT INTO session (token_hash, account, ends) VALUES (?, ?, ?)", HashToken(token), account,
            now + lifetime)
      .Step();
  transaction.Commit();
  return token;
}

std::optional<std::int64_t> AccountStore::FindSession(const std::string& token, std::int64_t now) const {
  Statement found(database, "SELECT account FROM session WHERE token_hash = ? AND ends > ?", HashToken(token), now);
  if (!found.Step()) return std::nullopt;
  return found.Number(0);
}

std::string AccountStore::UserId(std::int64_t account) const {
  Statement found(database, "SELECT user_id FROM account WHERE id = ?", account);
  return found.Step() ? found.Text(0) : "";
}

}  // namespace nvsupport::service
