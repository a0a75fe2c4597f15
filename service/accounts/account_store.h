// The accounts, their computers and their sessions. Holds no password and no token in a form that could be used. Times
// are seconds since 1970.
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

// Where somebody signs in: the computer's own identifier, if the request tells it, and what counts of the network
// address.
struct Origin {
  std::optional<std::uint32_t> device;
  std::string network;
};

// What there is about a user ID before its password has been looked at.
struct Candidate {
  std::int64_t account = 0;
  std::string passwordHash;
  bool knowsDevice = false;   // the computer has a name with this account
  bool knowsNetwork = false;  // a sign-in from there succeeded before
};

class AccountStore {
 public:
  static constexpr std::int64_t mostComputers = 100;                 // of one account
  static constexpr std::int64_t mostNetworks = 20;                   // of one account, those that were used last
  static constexpr std::int64_t networkSeconds = 90 * 24 * 60 * 60;  // for which one is known after its last use

  // The database is used as long as the store lives. Throws std::runtime_error if it cannot be used; so does every
  // operation.
  explicit AccountStore(Database& database);

  // done if the account can be made, else the first of noUserId, passwordTooShort, invalidEmail, userIdInUse and
  // emailInUse that applies. Costs no hash.
  Status Check(const NewAccount& account);
  // The same, with the account made.
  Status Create(const NewAccount& account, std::int64_t now);
  // True if the account was made with this address at that time or later: it may be this very request, sent again.
  bool IsRepeated(const NewAccount& account, std::int64_t since);

  std::optional<Candidate> Find(const std::string& userId, const Origin& origin, std::int64_t now);
  // With the right password, a hash of a former cost gives way to a new one.
  bool HasPassword(const Candidate& candidate, const std::string& password);
  void KnowNetwork(std::int64_t account, const std::string& network, std::int64_t now);

  // Names a computer, or names it anew; tooManyComputers for one that does not fit any more.
  Status NameComputer(std::int64_t account, const Computer& computer);
  std::vector<Computer> Computers(std::int64_t account);

  // Opens a session for `lifetime` seconds and returns its token. Sessions that have ended are forgotten, and so is the
  // oldest of the account if it has `most` of them.
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
