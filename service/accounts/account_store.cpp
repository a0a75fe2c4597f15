#include "service/accounts/account_store.h"

#include <stdexcept>

#include "service/accounts/account_rules.h"
#include "service/accounts/account_schema.h"

namespace nvsupport::service {

AccountStore::AccountStore(Database& accounts) : database(accounts) {
  StartCryptography();
  BringUpToDate(database);
}

Status AccountStore::Check(const NewAccount& account) {
  const std::string userKey = CredentialKey(account.userId);
  const std::string emailKey = EmailKey(account.email);
  if (userKey.empty()) return Status::noUserId;
  if (CredentialKey(account.password).size() < shortestPassword) return Status::passwordTooShort;
  if (emailKey.empty()) return Status::invalidEmail;
  if (!database.Run("SELECT 1 FROM account WHERE user_key = $1", userKey).empty()) return Status::userIdInUse;
  if (!database.Run("SELECT 1 FROM account WHERE email_key = $1", emailKey).empty()) return Status::emailInUse;
  return Status::done;
}

Status AccountStore::Create(const NewAccount& account, std::int64_t now) {
  const Status status = Check(account);
  if (status != Status::done) return status;
  const std::string hash = HashPassword(CredentialKey(account.password));  // takes long, so not in the transaction
  // The number is random, so that several servers need not agree on the next one.
  const auto made = database.Run(
      "INSERT INTO account (id, user_key, user_id, password_hash, name, company, email_key, keep_informed, language,"
      " created) VALUES ($1, $2, $3, $4, $5, $6, $7, $8, $9, $10) ON CONFLICT DO NOTHING RETURNING id",
      NewNumber(), CredentialKey(account.userId), account.userId, hash, account.name, account.company,
      EmailKey(account.email), int{account.keepInformed}, account.language, now);
  if (!made.empty()) return Status::done;
  const Status taken = Check(account);  // by another process, just now
  if (taken == Status::done) throw std::runtime_error("the number of a new account was taken");
  return taken;
}

bool AccountStore::IsRepeated(const NewAccount& account, std::int64_t since) {
  return !database
              .Run("SELECT 1 FROM account WHERE user_key = $1 AND email_key = $2 AND created >= $3",
                   CredentialKey(account.userId), EmailKey(account.email), since)
              .empty();
}

std::optional<Candidate> AccountStore::Find(const std::string& userId, const Origin& origin, std::int64_t now) {
  constexpr std::int64_t noDevice = -1;
  const auto found = database.Run(
      "SELECT id, password_hash,"
      " (SELECT count(*) FROM computer WHERE account = id AND device = $1),"
      " (SELECT count(*) FROM known_address WHERE account = id AND address = $2 AND seen > $3)"
      " FROM account WHERE user_key = $4",
      origin.device ? std::int64_t{*origin.device} : noDevice, origin.network, now - networkSeconds,
      CredentialKey(userId));
  if (found.empty()) return std::nullopt;
  return Candidate{ToNumber(found[0][0]), found[0][1], found[0][2] != "0", found[0][3] != "0"};
}

bool AccountStore::HasPassword(const Candidate& candidate, const std::string& password) {
  const std::string key = CredentialKey(password);
  if (!MatchesPassword(candidate.passwordHash, key)) return false;
  if (NeedsNewHash(candidate.passwordHash)) {
    database.Run("UPDATE account SET password_hash = $1 WHERE id = $2 AND password_hash = $3", HashPassword(key),
                 candidate.account, candidate.passwordHash);
  }
  return true;
}

void AccountStore::KnowNetwork(std::int64_t account, const std::string& network, std::int64_t now) {
  constexpr std::int64_t day = std::int64_t{24} * 60 * 60;
  // Written once a day at most.
  if (!database
           .Run("SELECT 1 FROM known_address WHERE account = $1 AND address = $2 AND seen > $3", account, network,
                now - day)
           .empty()) {
    return;
  }
  Transaction transaction(database, "account " + std::to_string(account));
  database.Run(
      "INSERT INTO known_address (account, address, seen) VALUES ($1, $2, $3)"
      " ON CONFLICT (account, address) DO UPDATE SET seen = excluded.seen",
      account, network, now);
  database.Run(
      "DELETE FROM known_address WHERE account = $1 AND (seen <= $2 OR address NOT IN"
      " (SELECT address FROM known_address WHERE account = $1 ORDER BY seen DESC LIMIT $3))",
      account, now - networkSeconds, mostNetworks);
  transaction.Commit();
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
