#include <dlfcn.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "system.h"

namespace nvhost {

namespace fs = std::filesystem;

std::string BesideProgram(const std::string& path) {
  return (fs::read_symlink("/proc/self/exe").parent_path() / path).lexically_normal();
}

std::string AbsolutePath(const std::string& path) {
  return fs::absolute(path);
}

std::string WhyNotLoaded() {
  return dlerror();
}

bool IsOpenHere(const std::string& file) {
  std::error_code ignored;
  for (const auto& descriptor : fs::directory_iterator("/proc/self/fd", ignored)) {
    if (fs::equivalent(descriptor.path(), file, ignored)) return true;
  }
  return false;
}

bool UseTerminal() {
  return isatty(STDOUT_FILENO) != 0;
}

void UseBinaryOutput() {}

std::vector<int> EndingSignals() {
  return {SIGINT, SIGTERM, SIGHUP};
}

}  // namespace nvhost
