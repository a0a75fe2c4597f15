// Slows down who guesses passwords or makes accounts by the thousand. What counts is charged to one or more buckets:
// an account, a network address, a device. A bucket takes so many charges at once and gets them back one by one over
// a period, so in the long run one comes every period / charges. What finds a bucket empty is refused at once, before
// any password is looked at, and costs the service next to nothing.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_BRAKE_H
#define NVSUPPORT_SERVICE_ACCOUNTS_BRAKE_H

#include <cstdint>
#include <string>
#include <vector>

#include "service/database/database.h"

namespace nvsupport::service {

struct Bucket {
  std::string name;
  std::int64_t charges = 1;  // that it takes at once
  bool forgiving = false;    // what succeeds gives back all former charges, too
};

// One thing that may count: ask Wait; if that gives 0 do it, then Charge if it counts, else GiveBack. Times are seconds
// since 1970; a clock that is set back makes nobody wait longer than the period.
class Brake {
 public:
  Brake(Database& accounts, std::int64_t periodSeconds, std::vector<Bucket> charged)
      : database(accounts), period(periodSeconds) {
    for (Bucket& bucket : charged) buckets.push_back({std::move(bucket)});
  }

  // 0, or for how many seconds everything in one of the buckets will be refused.
  std::int64_t Wait(std::int64_t now);
  void Charge(std::int64_t now);
  void GiveBack();
  static void Empty(Database& accounts, const std::string& bucket);

 private:
  struct Charged : Bucket {
    bool noted = false;  // charged already, so that those who come at the same time see it
    bool clean = true;   // there was no charge before
  };
  std::int64_t Interval(const Bucket& bucket) const {
    return period / bucket.charges > 0 ? period / bucket.charges : 1;
  }

  // A row of the table "brake" says until when the charges of a bucket last; what is over is forgotten.
  Database& database;
  const std::int64_t period;
  std::vector<Charged> buckets;
};

}  // namespace nvsupport::service

#endif
