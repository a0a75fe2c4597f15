// The accounts, their computers and their sessions, in one SQLite file that any number of processes may use at a
// time. Holds no password and no token in a form that could be used. Times are seconds since 1970.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_STORE_H
#define NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_STORE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "service/database/sqlite.h"
#include "service/status.h"

namespace nvsupport::service {

struct NewAccount {
  std::string userId;
  std::string password;
  std::string name;
  std::string company;
  std::string email;
  bool keepInformed = false;
  std::string language;
};

struct Computer {
  std::uint32_t device = 0;  // the identifier that the computer gives itself
  std::string name;
  std::uint32_t platform = 0;
};

class AccountStore {
 public:
  static constexpr std::int64_t mostComputers = 100;  // of one account

  // Throws std::runtime_error if the file cannot be used; so does every operation.
  explicit AccountStore(const std::string& path);

  // done, or the first of noUserId, passwordTooShort, invalidEmail, userIdInUse and emailInUse that applies.
  Status Create(const NewAccount& account, std::int64_t now);

  // done with the account's number, wrongUserId or wrongPassword.
  Status Verify(const std::string& userId, const std::string& password, std::int64_t& account) const;

  bool HasComputer(std::int64_t account, std::uint32_t device) const;
  // Names a computer, or names it anew; tooManyComputers for one that does not fit any more.
  Status NameComputer(std::int64_t account, const Computer& computer);
  std::vector<Computer> Computers(std::int64_t account) const;

  // Opens a session for `lifetime` seconds and returns its token. Sessions that have ended are forgotten.
  std::string OpenSession(std::int64_t account, std::int64_t now, std::int64_t lifetime);
  // The account of a session that has not ended.
  std::optional<std::int64_t> FindSession(const std::string& token, std::int64_t now) const;

  // The user ID as it was typed when the account was made.
  std::string UserId(std::int64_t account) const;

 private:
  Database database;
};

}  // namespace nvsupport::service

#endif
