#include "service/accounts/account_care.h"

#include <array>
#include <ctime>
#include <stdexcept>

#include "service/accounts/account_rules.h"
#include "service/accounts/account_service.h"
#include "service/accounts/account_store.h"
#include "src/base/ascii.h"

namespace nvsupport::service {
namespace {

std::string Time(const std::string& seconds) {
  const std::time_t time = ToNumber(seconds);
  const std::tm* const parts = std::gmtime(&time);
  std::array<char, sizeof "2000-01-01 00:00:00 UTC"> text = {};
  // A backup can hold any number, also of a year with more digits.
  if (!parts || std::strftime(text.data(), text.size(), "%F %T UTC", parts) == 0) return seconds + " s since 1970";
  return text.data();
}

// Accounts of former versions can hold what would change the terminal.
std::string Line(const std::string& name, std::string value) {
  for (char& c : value) c = base::HasControlCharacters({&c, 1}) ? '?' : c;
  return name + ": " + value + '\n';
}

}  // namespace

AccountCare::AccountCare(Database& accounts, const std::string& wanted) : database(accounts) {
  const auto found = AccountStore(database).Find(wanted, {}, 0);
  if (!found) throw std::runtime_error("there is no such account");
  account = found->account;
  userId = AccountStore(database).UserId(account);
}

std::string AccountCare::Show() {
  std::string text;
  for (const auto& row : database.Run("SELECT user_id, name, company, email_key, language, keep_informed, created"
                                      " FROM account WHERE id = $1",
                                      account)) {
    const char* const names[] = {"user ID", "name", "company", "email", "language"};
    for (std::size_t i = 0; i < std::size(names); ++i) text += Line(names[i], row[i]);
    text += Line("keep informed", row[5] != "0" ? "yes" : "no") + Line("created", Time(row[6]));
  }
  for (const Computer& computer : AccountStore(database).Computers(account)) {
    text += Line("computer", computer.name + " (number " + std::to_string(computer.device) + ", kind " +
                                 std::to_string(computer.platform) + ')');
  }
  for (const auto& row :
       database.Run("SELECT address, seen FROM known_address WHERE account = $1 ORDER BY seen", account)) {
    text += Line("address", row[0] + ", " + Time(row[1]));
  }
  for (const auto& row : database.Run("SELECT ends FROM session WHERE account = $1 ORDER BY ends", account)) {
    text += Line("session until", Time(row[0]));
  }
  return text;
}

void AccountCare::Correct(const std::string& field, const std::string& value) {
  if (base::HasControlCharacters(value)) throw std::runtime_error("a value cannot hold control characters");
  if (field == "email") {
    const std::string key = EmailKey(value);
    if (key.empty()) throw std::runtime_error("that is no email address");
    database.Run("UPDATE account SET email_key = $1 WHERE id = $2", key, account);
  } else if (field == "keep-informed") {
    if (value != "yes" && value != "no") throw std::runtime_error("keep-informed is yes or no");
    database.Run("UPDATE account SET keep_informed = $1 WHERE id = $2", int{value == "yes"}, account);
  } else if (field == "name" || field == "company" || field == "language") {
    database.Run(("UPDATE account SET " + field + " = $1 WHERE id = $2").c_str(), value, account);
  } else {
    throw std::runtime_error("a field is name, company, email, language or keep-informed");
  }
}

std::string AccountCare::ResetPassword() {
  std::string password = CredentialKey(NewToken());
  const std::string hash = HashPassword(password);
  Transaction transaction(database, "account " + std::to_string(account));
  database.Run("UPDATE account SET password_hash = $1 WHERE id = $2", hash, account);
  database.Run("DELETE FROM session WHERE account = $1", account);
  AccountService::ForgetFailures(database, account, userId);
  transaction.Commit();
  return password;
}

void AccountCare::Delete() {
  Transaction transaction(database, "account " + std::to_string(account));
  AccountService::ForgetFailures(database, account, userId);
  for (const char* table : {"session", "known_address", "computer"}) {
    database.Run((std::string("DELETE FROM ") + table + " WHERE account = $1").c_str(), account);
  }
  database.Run("DELETE FROM account WHERE id = $1", account);
  transaction.Commit();
}

void Expire(Database& accounts, std::int64_t now, std::int64_t brakeSeconds) {
  // What lies further ahead than a full bucket comes from a clock that was set back.
  accounts.Run("DELETE FROM brake WHERE until <= $1 OR until > $2", now, now + 2 * brakeSeconds);
  accounts.Run("DELETE FROM session WHERE ends <= $1", now);
  accounts.Run("DELETE FROM known_address WHERE seen <= $1", now - AccountStore::networkSeconds);
}

}  // namespace nvsupport::service
