#include "host_state.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <filesystem>

namespace soak {
namespace {

unsigned FileMask() {
  const mode_t mask = umask(0);
  umask(mask);
  return mask;
}

std::vector<std::string> Environment() {
  std::vector<std::string> all;
  for (char** entry = environ; *entry != nullptr; ++entry) all.emplace_back(*entry);
  std::ranges::sort(all);  // the host does not see the order
  return all;
}

// Of the C library's own, and set once a handler was given back.
constexpr int restorerFlag = 0x04000000;

bool IsSame(const struct sigaction& a, const struct sigaction& b) {
  return a.sa_handler == b.sa_handler && (a.sa_flags | restorerFlag) == (b.sa_flags | restorerFlag);
}

}  // namespace

HostState::HostState()
    : locale(std::setlocale(LC_ALL, nullptr)),
      folder(std::filesystem::current_path()),
      environment(Environment()),
      fileMask(FileMask()) {
  for (int signal = 1; signal < NSIG; ++signal) sigaction(signal, nullptr, &handlers[static_cast<std::size_t>(signal)]);
  sigprocmask(SIG_BLOCK, nullptr, &mask);
}

std::string HostState::Difference() const {
  const HostState now;
  if (now.locale != locale) return "the locale is " + now.locale;
  if (now.folder != folder) return "the folder is " + now.folder;
  if (now.fileMask != fileMask) return "the file mask is " + std::to_string(now.fileMask);
  if (now.environment != environment) return "the environment has changed";
  for (int signal = 1; signal < NSIG; ++signal) {
    const auto at = static_cast<std::size_t>(signal);
    const bool isMasked = sigismember(&mask, signal) == 1;
    if (!IsSame(now.handlers[at], handlers[at])) return "a handler of signal " + std::to_string(signal);
    if ((sigismember(&now.mask, signal) == 1) != isMasked) return "the mask of signal " + std::to_string(signal);
  }
  return {};
}

}  // namespace soak
