// nvhost whoami: who is signed in for a product on this computer, without asking the service.
#include <cinttypes>
#include <cstdio>

#include "commands.h"
#include "terminal/printable.h"

namespace nvhost {

void WhoAmI(const NVSupportModule& support, const std::string& product) {
  support.openSession(product.c_str());
  const std::string userId = support.userId();
  std::printf("user ID            %s\n", userId.empty() ? "(none)" : Printable(userId).text.c_str());
  std::printf("device identifier  %" PRIu32 "\n", support.deviceId());
}

}  // namespace nvhost
