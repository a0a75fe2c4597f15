#include "service/accounts/brake.h"

#include <algorithm>

namespace nvsupport::service {

std::int64_t Brake::Wait(std::int64_t now) {
  std::int64_t wait = 0;
  for (Charged& bucket : buckets) {
    const std::int64_t interval = Interval(bucket);
    const std::int64_t most = interval * bucket.charges;
    const auto found = database.Run("SELECT until FROM brake WHERE bucket = $1 AND until > $2", bucket.name, now);
    bucket.clean = found.empty();
    if (bucket.clean) continue;
    // One statement, so that of requests at the same time no more get through than the bucket has charges for. A time
    // that lies further ahead than charges can bring it was written before the clock was set back.
    const auto charged = database.Run(
        "UPDATE brake SET until = CASE WHEN until > $1 THEN $1 ELSE until + $2 END"
        " WHERE bucket = $3 AND (until <= $4 OR until > $1) RETURNING until",
        now + most, interval, bucket.name, now + most - interval);
    bucket.noted = !charged.empty();
    if (!bucket.noted) wait = std::max(wait, ToNumber(found[0][0]) - (now + most - interval));
  }
  if (wait == 0) return 0;
  for (const Charged& bucket : buckets) {
    if (bucket.noted) {
      database.Run("UPDATE brake SET until = until - $1 WHERE bucket = $2", Interval(bucket), bucket.name);
    }
  }
  return std::clamp<std::int64_t>(wait, 1, period);
}

void Brake::Charge(std::int64_t now) {
  Transaction transaction(database, "brake");
  database.Run("DELETE FROM brake WHERE until <= $1", now);
  for (const Charged& bucket : buckets) {
    if (bucket.noted) continue;
    database.Run(
        "INSERT INTO brake (bucket, until) VALUES ($1, $2)"
        " ON CONFLICT (bucket) DO UPDATE SET until = brake.until + $3",
        bucket.name, now + Interval(bucket), Interval(bucket));
  }
  transaction.Commit();
}

void Brake::GiveBack() {
  for (const Charged& bucket : buckets) {
    if (bucket.forgiving && !bucket.clean) {
      Empty(database, bucket.name);
    } else if (bucket.noted) {
      database.Run("UPDATE brake SET until = until - $1 WHERE bucket = $2", Interval(bucket), bucket.name);
    }
  }
}

void Brake::Empty(Database& accounts, const std::string& bucket) {
  accounts.Run("DELETE FROM brake WHERE bucket = $1", bucket);
}

}  // namespace nvsupport::service
