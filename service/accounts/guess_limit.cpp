#include "service/accounts/guess_limit.h"

#include <algorithm>

namespace nvsupport::service {

std::optional<std::int64_t> GuessLimit::Wait(std::int64_t now) {
  const std::int64_t forgotten = now - settings.failureSeconds;
  const auto ofUser =
      database.Run("SELECT count(*) FROM attempt WHERE user_key = $1 AND answered > $2", user, forgotten);
  const auto ofNetwork =
      database.Run("SELECT count(*) FROM attempt WHERE address = $1 AND answered > $2", network, forgotten);
  const std::int64_t failures = ToNumber(ofUser[0][0]);
  clean = failures == 0;
  if (failures < settings.failuresPerAccount && ToNumber(ofNetwork[0][0]) < settings.failuresPerAddress) return 0;

  Transaction transaction(database, "attempts");
  const auto inAll = database.Run("SELECT count(*) FROM attempt WHERE answered > $1", now);
  const auto before = database.Run(
      "SELECT count(*), coalesce(max(answered), $1) FROM attempt"
      " WHERE answered > $1 AND (user_key = $2 OR address = $3)",
      now, user, network);
  // One account or address does not take the places of all.
  const std::int64_t most = std::max<std::int64_t>(settings.slowAtATime / 2, 1);
  if (ToNumber(inAll[0][0]) >= settings.slowAtATime || ToNumber(before[0][0]) >= most) return std::nullopt;
  const std::int64_t answered = ToNumber(before[0][1]) + settings.slowSeconds;
  database.Run("INSERT INTO attempt (user_key, address, answered) VALUES ($1, $2, $3)", user, network, answered);
  transaction.Commit();
  noted = true;
  return answered - now;
}

void GuessLimit::Succeeded() {
  if (!clean || noted) database.Run("DELETE FROM attempt WHERE user_key = $1", user);
}

void GuessLimit::Failed(std::int64_t now) {
  database.Run("DELETE FROM attempt WHERE answered <= $1", now - settings.failureSeconds);
  if (noted) return;
  database.Run("INSERT INTO attempt (user_key, address, answered) VALUES ($1, $2, $3)", user, network, now);
}

}  // namespace nvsupport::service
