#include <dlfcn.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
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

bool TakesNewFiles(const std::string& folder) {
  return access(folder.c_str(), W_OK | X_OK) == 0;
}

bool HasScreen() {
  for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "WAYLAND_SOCKET", "QT_QPA_PLATFORM"}) {
    const char* const value = std::getenv(variable);
    if (value != nullptr && value[0] != '\0') return true;
  }
  return false;
}

std::size_t TerminalColumns() {
  constexpr std::size_t usual = 80;
  if (isatty(STDERR_FILENO) == 0) return 0;
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual;
}

void UseBinaryOutput() {}

std::vector<int> EndingSignals() {
  return {SIGINT, SIGTERM, SIGHUP};
}

}  // namespace nvhost
