// The accounts, their computers and their sessions. Passwords and tokens are stored as hashes only. Times are seconds
// since 1970.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_STORE_H
#define NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_STORE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "service/database/database.h"
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

// Where a sign-in comes from: the computer's own identifier, if the request has it, and the part of the network address
// that counts.
struct Origin {
  std::optional<std::uint32_t> device;
  std::string network;
};

// What is known about a user ID before its password is checked.
struct Candidate {
  std::int64_t account = 0;
  std::string passwordHash;
  bool knowsDevice = false;   // the computer has a name with this account
  bool knowsNetwork = false;  // a sign-in from there succeeded before
};

class AccountStore {
 public:
  static constexpr std::int64_t mostComputers = 100;  // of one account
  static constexpr std::int64_t mostNetworks = 20;    // of one account; the least recently used go first
  static constexpr std::int64_t networkSeconds = 90L * 24 * 60 * 60;  // after its last use a network is known so long

  // The database is used as long as the store lives. Throws std::runtime_error if it cannot be used; so does every
  // operation.
  explicit AccountStore(Database& database);

  // done if the account can be made, else the first of noUserId, passwordTooShort, invalidEmail, userIdInUse and
  // emailInUse that applies. Costs no hash.
  Status Check(const NewAccount& account);
  // The same, and makes the account.
  Status Create(const NewAccount& account, std::int64_t now);
  // True if the account was made with this address at that time or later: it may be the same request, sent again.
  bool IsRepeated(const NewAccount& account, std::int64_t since);

  std::optional<Candidate> Find(const std::string& userId, const Origin& origin, std::int64_t now);
  // If the password is right and its hash was made at a former cost, a new hash replaces it.
  bool HasPassword(const Candidate& candidate, const std::string& password);
  void KnowNetwork(std::int64_t account, const std::string& network, std::int64_t now);

  // Names a computer or renames it. tooManyComputers if the account has as many as it may have.
  Status NameComputer(std::int64_t account, const Computer& computer);
  std::vector<Computer> Computers(std::int64_t account);

  // Opens a session for `lifetime` seconds and returns its token. Deletes sessions that have ended, and the
  // oldest of the account if it has `most`.
  std::string OpenSession(std::int64_t account, std::int64_t now, std::int64_t lifetime, std::int64_t most);
  // The account of a session that has not ended.
  std::optional<std::int64_t> FindSession(const std::string& token, std::int64_t now);
  void EndSessions(std::int64_t account);

  // The user ID as it was typed when the account was made.
  std::string UserId(std::int64_t account);

 private:
  Database& database;
};

}  // namespace nvsupport::service

#endif
