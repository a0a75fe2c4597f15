// nvhost whoami: who is signed in for a product on this computer, without asking the service.
#include <cinttypes>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "terminal/printable.h"

namespace nvhost {

void WhoAmI(const NVSupportModule& support, const std::string& product, bool json) {
  support.openSession(product.c_str());
  const std::string userId = support.userId();
  if (json) {
    const nlohmann::ordered_json all = {{"userId", userId}, {"deviceId", support.deviceId()}};
    std::puts(all.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
    return;
  }
  std::printf("user ID            %s\n", userId.empty() ? "(none)" : Printable(userId).text.c_str());
  std::printf("device identifier  %" PRIu32 "\n", support.deviceId());
}

}  // namespace nvhost
