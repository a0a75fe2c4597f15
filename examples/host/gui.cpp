// nvhost gui: starts nvhost-gui, a host with a window. It is a program of its own, so that nvhost needs no toolkit.
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "commands.h"
#include "system.h"

namespace nvhost {

void Gui(const std::string& library, const std::string& product) {
  const std::string program = BesideProgram("nvhost-gui");
  execl(program.c_str(), "nvhost-gui", "--library", AbsolutePath(library).c_str(), "--product", product.c_str(),
        nullptr);
  throw Failure(noModule, "cannot start " + program + ": " + std::strerror(errno));
}

}  // namespace nvhost
