#include "service/accounts/account_store.h"

#include <stdexcept>

#include "service/accounts/account_rules.h"
#include "service/accounts/account_schema.h"

namespace nvsupport::service {

AccountStore::AccountStore(Database& accounts) : database(accounts) {
  StartCryptography();
  BringUpToDate(database);
}

Status AccountStore::Create(const NewAccount& account, std::int64_t now) {
  const std::string userKey = CredentialKey(account.userId);
  const std::string passwordKey = CredentialKey(account.password);
  const std::string emailKey = EmailKey(account.email);
  if (userKey.empty()) return Status::noUserId;
  if (passwordKey.size() < shortestPassword) return Status::passwordTooShort;
  if (emailKey.empty()) return Status::invalidEmail;
  const std::string hash = HashPassword(passwordKey);  // before the database is asked: it takes its time

  // The number is drawn, so that no two servers have to agree on the next one.
  const auto made = database.Run(
      "INSERT INTO account (id, user_key, user_id, password_hash, name, company, email_key, keep_informed, language,"
      " created) VALUES ($1, $2, $3, $4, $5, $6, $7, $8, $9, $10) ON CONFLICT DO NOTHING RETURNING id",
      NewNumber(), userKey, account.userId, hash, account.name, account.company, emailKey, int{account.keepInformed},
      account.language, now);
  if (!made.empty()) return Status::done;
  if (!database.Run("SELECT 1 FROM account WHERE user_key = $1", userKey).empty()) return Status::userIdInUse;
  if (!database.Run("SELECT 1 FROM account WHERE email_key = $1", emailKey).empty()) return Status::emailInUse;
  throw std::runtime_error("the number of a new account was taken");
}

bool AccountStore::IsRepeated(const NewAccount& account, std::int64_t since) {
  return !database
              .Run("SELECT 1 FROM account WHERE user_key = $1 AND email_key = $2 AND created >= $3",
                   CredentialKey(account.userId), EmailKey(account.email), since)
              .empty();
}

Status AccountStore::Verify(const std::string& userId, const std::string& password, std::int64_t& account) {
  const auto found = database.Run("SELECT id, password_hash FROM account WHERE user_key = $1", CredentialKey(userId));
  if (found.empty()) return Status::wrongUserId;
  if (!MatchesPassword(found[0][1], CredentialKey(password))) return Status::wrongPassword;
  account = ToNumber(found[0][0]);
  return Status::done;
}

bool AccountStore::HasComputer(std::int64_t account, std::uint32_t device) {
  return !database.Run("SELECT 1 FROM computer WHERE account = $1 AND device = $2", account, device).empty();
}

Status AccountStore::NameComputer(std::int64_t account, const Computer& computer) {
  Transaction transaction(database, "account " + std::to_string(account));
  const auto others =
      database.Run("SELECT count(*) FROM computer WHERE account = $1 AND device <> $2", account, computer.device);
  if (ToNumber(others[0][0]) >= mostComputers) return Status::tooManyComputers;
  database.Run(
      "INSERT INTO computer (account, device, name, platform) VALUES ($1, $2, $3, $4)"
      " ON CONFLICT (account, device) DO UPDATE SET name = excluded.name, platform = excluded.platform",
      account, computer.device, computer.name, computer.platform);
  transaction.Commit();
  return Status::done;
}

std::vector<Computer> AccountStore::Computers(std::int64_t account) {
  std::vector<Computer> computers;
  for (const auto& row :
       database.Run("SELECT device, name, platform FROM computer WHERE account = $1 ORDER BY name, device", account)) {
    computers.push_back(
        {static_cast<std::uint32_t>(ToNumber(row[0])), row[1], static_cast<std::uint32_t>(ToNumber(row[2]))});
  }
  return computers;
}

std::string AccountStore::OpenSession(std::int64_t account, std::int64_t now, std::int64_t lifetime,
                                      std::int64_t most) {
  std::string token = NewToken();
  database.Run("DELETE FROM session WHERE ends <= $1", now);
  Transaction transaction(database, "account " + std::to_string(account));
  database.Run(
      "DELETE FROM session WHERE account = $1 AND token_hash NOT IN"
      " (SELECT token_hash FROM session WHERE account = $1 ORDER BY ends DESC LIMIT $2)",
      account, most - 1);
  database.Run("INSERT INTO session (token_hash, account, ends) VALUES ($1, $2, $3)", HashToken(token), account,
               now + lifetime);
  transaction.Commit();
  return token;
}

std::optional<std::int64_t> AccountStore::FindSession(const std::string& token, std::int64_t now) {
  const auto found =
      database.Run("SELECT account FROM session WHERE token_hash = $1 AND ends > $2", HashToken(token), now);
  if (found.empty()) return std::nullopt;
  return ToNumber(found[0][0]);
}

void AccountStore::EndSessions(std::int64_t account) {
  database.Run("DELETE FROM session WHERE account = $1", account);
}

std::string AccountStore::UserId(std::int64_t account) {
  const auto found = database.Run("SELECT user_id FROM account WHERE id = $1", account);
  return found.empty() ? "" : found[0][0];
}

}  // namespace nvsupport::service
