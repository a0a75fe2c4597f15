// nvhost gui: starts nvhost-gui, a host with a window. It is a program of its own, so that nvhost needs no toolkit.
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "commands.h"
#include "system.h"

namespace nvhost {

void AddGui(CLI::App& app, Work& chosen) {
  const auto product = std::make_shared<std::string>("Map Viewer");
  CLI::App* const command = app.add_subcommand("gui", "Open a window with the account, the map shop and downloads");
  command->add_option("--product", *product, "Product whose settings to use")->type_name("NAME")->capture_default_str();
  command->callback([product, &app, &chosen] {
    const auto library = AbsolutePath(app.get_option("--library")->as<std::string>());
    chosen = [product, library](const NVSupportModule&) {
      const std::string program = BesideProgram("nvhost-gui");
      execl(program.c_str(), "nvhost-gui", "--library", library.c_str(), "--product", product->c_str(), nullptr);
      throw Failure(noModule, "cannot start " + program + ": " + std::strerror(errno));
    };
  });
}

}  // namespace nvhost
