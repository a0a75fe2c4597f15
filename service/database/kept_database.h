// A database that a process keeps open between requests, with the object that works on it.
#ifndef NVSUPPORT_SERVICE_DATABASE_KEPT_DATABASE_H
#define NVSUPPORT_SERVICE_DATABASE_KEPT_DATABASE_H

#include <chrono>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "service/database/database.h"

namespace nvsupport::service {

// User: made from a Database&.
template <typename User>
class KeptDatabase {
 public:
  explicit KeptDatabase(std::string databaseAddress) : address(std::move(databaseAddress)) {}

  // Opens the database if it is not open, calls `work` with its user, and returns what that returns. After a failure
  // the database is opened again; for the next second all calls fail at once, so that requests do not queue up for a
  // database that is not there.
  auto Use(const auto& work) {
    if (Clock::now() < failing) throw std::runtime_error("the database failed a moment ago");
    try {
      if (database && !database->IsUsable()) Close();
      if (!database) {
        database = OpenDatabase(address);
        user.emplace(*database);
      }
      return work(*user);
    } catch (...) {
      Close();
      failing = Clock::now() + std::chrono::seconds(1);
      throw;
    }
  }

 private:
  using Clock = std::chrono::steady_clock;

  void Close() {
    user.reset();
    database.reset();
  }

  const std::string address;
  std::unique_ptr<Database> database;
  std::optional<User> user;
  Clock::time_point failing;
};

}  // namespace nvsupport::service

#endif
