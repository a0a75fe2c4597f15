// Guesses passwords against the brake of the account service, as fast as it allows, by a clock of its own: how many
// passwords get looked at. The user IDs exist in no database, so no time goes into hashes.
//
// nvservice-guesses ADDRESSES ACCOUNTS HOURS
//
// Each address tries the accounts in turn, and comes again when the service says. The database is a new SQLite file in
// the folder of temporary files.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <queue>
#include <string>
#include <utility>
#include <vector>

#include "service/accounts/account_service.h"
#include "support/temporary_home.h"
#include "support/wire_items.h"

namespace {

using namespace nvsupport::service;
using nvsupport::testing::Int;
using nvsupport::testing::Text;

std::int64_t RetrySeconds(const Reply& reply) {
  const std::string name = "Retry-After: ";
  for (const std::string& header : reply.headers) {
    if (header.starts_with(name)) return ToNumber(header.substr(name.size()));
  }
  return 0;
}

std::string Address(std::int64_t number) {
  return "10." + std::to_string(number / 65536) + '.' + std::to_string(number / 256 % 256) + '.' +
         std::to_string(number % 256);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: nvservice-guesses ADDRESSES ACCOUNTS HOURS\n", stderr);
    return 2;
  }
  const std::int64_t addresses = std::atoll(argv[1]);
  const std::int64_t accounts = std::atoll(argv[2]);
  const std::int64_t end = std::atoll(argv[3]) * 3600;
  const nvsupport::testing::TemporaryFolder folder;
  const auto database = OpenDatabase(folder / "accounts.sqlite");
  AccountService service(*database, {});
  using Turn = std::pair<std::int64_t, std::int64_t>;  // when, and which address
  std::priority_queue<Turn, std::vector<Turn>, std::greater<>> turns;
  for (std::int64_t address = 0; address < addresses; ++address) turns.emplace(0, address);
  std::vector<std::int64_t> next(static_cast<std::size_t>(addresses));
  std::vector<std::int64_t> looks(static_cast<std::size_t>(accounts));
  std::int64_t refused = 0;
  while (!turns.empty() && turns.top().first < end) {
    const auto [now, address] = turns.top();
    turns.pop();
    auto& turn = next[static_cast<std::size_t>(address)];
    const std::int64_t account = (address + turn++) % accounts;
    const Reply reply = service.Answer(Int(8) + Text("user" + std::to_string(account)) + Text("guess") + Int(1),
                                       {Address(address), now});
    const std::int64_t wait = RetrySeconds(reply);
    ++(reply.httpStatus == 200 ? looks[static_cast<std::size_t>(account)] : refused);
    turns.emplace(now + wait, address);
  }
  std::int64_t sum = 0;
  for (const std::int64_t one : looks) sum += one;
  std::printf(
      "%lld addresses, %lld accounts, %lld h: %lld passwords looked at, at most %lld of an account; %lld refused\n",
      static_cast<long long>(addresses), static_cast<long long>(accounts), static_cast<long long>(end / 3600),
      static_cast<long long>(sum), static_cast<long long>(*std::ranges::max_element(looks)),
      static_cast<long long>(refused));
  return 0;
}
