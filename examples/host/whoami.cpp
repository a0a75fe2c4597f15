// nvhost whoami: who is signed in for a product on this computer, without asking the service.
#include <cinttypes>
#include <cstdio>

#include "commands.h"
#include "terminal/printable.h"

namespace nvhost {

void AddWhoAmI(CLI::App& app, Work& chosen) {
  const auto product = std::make_shared<std::string>();
  CLI::App* const command = app.add_subcommand("whoami", "Show the user ID and the identifier of this computer");
  command->add_option("--product", *product, "Product whose settings to use")->required()->type_name("NAME");
  command->callback([product, &chosen] {
    chosen = [product](const NVSupportModule& support) {
      support.openSession(product->c_str());
      const std::string userId = support.userId();
      std::printf("user ID            %s\n", userId.empty() ? "(none)" : Printable(userId).text.c_str());
      std::printf("device identifier  %" PRIu32 "\n", support.deviceId());
    };
  });
}

}  // namespace nvhost
