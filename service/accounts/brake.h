// Slows down whoever guesses passwords or makes accounts by the thousand. Each attempt is charged to one or more
// buckets: an account, a network address, a device. A bucket has a number of charges and gets back those that were
// spent, one by one, over a period; in the long run it lets one attempt through every period / charges. An attempt that
// finds a bucket empty is refused at once, before any password is checked, and costs the service next to nothing.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_BRAKE_H
#define NVSUPPORT_SERVICE_ACCOUNTS_BRAKE_H

#include <cstdint>
#include <string>
#include <vector>

#include "service/database/database.h"

namespace nvsupport::service {

struct Bucket {
  std::string name;
  std::int64_t charges = 1;  // how many it has at first
  bool forgiving = false;    // an attempt that succeeds gives back all earlier charges, too
};

// One attempt: call Wait; if that gives 0 go on, then call Charge if the attempt counts, else GiveBack. Times are
// seconds since 1970; if the clock is set back nobody waits longer than the period.
class Brake {
 public:
  Brake(Database& accounts, std::int64_t periodSeconds, std::vector<Bucket> charged)
      : database(accounts), period(periodSeconds) {
    for (Bucket& bucket : charged) buckets.push_back({std::move(bucket)});
  }

  // 0, or the seconds until no bucket is empty any more.
  std::int64_t Wait(std::int64_t now);
  void Charge(std::int64_t now);
  void GiveBack();
  static void Empty(Database& accounts, const std::string& bucket);

 private:
  struct Charged : Bucket {
    bool noted = false;  // charged already, so that attempts at the same time see it
    bool clean = true;   // there was no charge before
  };
  std::int64_t Interval(const Bucket& bucket) const {
    return period / bucket.charges > 0 ? period / bucket.charges : 1;
  }

  // A row of the table "brake" says when a bucket will be full again. Rows whose time is over are deleted.
  Database& database;
  const std::int64_t period;
  std::vector<Charged> buckets;
};

}  // namespace nvsupport::service

#endif
