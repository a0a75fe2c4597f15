#include "host_state.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "events.h"

namespace soak {
namespace {

constexpr long allocatorKeepsKilobytes = 8 << 10;

unsigned FileMask() {
  const mode_t mask = umask(0);
  umask(mask);
  return mask;
}

std::vector<std::string> Environment() {
  std::vector<std::string> all;
  for (char** entry = environ; *entry != nullptr; ++entry) all.emplace_back(*entry);
  return all;
}

// Of the C library's own, and set once a handler was given back.
constexpr int restorerFlag = 0x04000000;

bool IsSame(const struct sigaction& a, const struct sigaction& b) {
  return a.sa_handler == b.sa_handler && (a.sa_flags | restorerFlag) == (b.sa_flags | restorerFlag);
}

std::size_t CountEntries(const char* folder) {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
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

void HostState::ExpectUnchanged() const {
  const HostState now;
  if (now.locale != locale) Fail("the locale is %s", now.locale.c_str());
  if (now.folder != folder) Fail("the folder is %s", now.folder.c_str());
  if (now.fileMask != fileMask) Fail("the file mask is %o", now.fileMask);
  if (now.environment != environment) Fail("the environment has changed");
  for (int signal = 1; signal < NSIG; ++signal) {
    const auto at = static_cast<std::size_t>(signal);
    if (!IsSame(now.handlers[at], handlers[at])) Fail("the handler of signal %d has changed", signal);
    if (sigismember(&now.mask, signal) != sigismember(&mask, signal)) Fail("signal %d is masked differently", signal);
  }
}

Resources::Resources() : threads(CountEntries("/proc/self/task")) {
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;  // the descriptor of this very search
    const std::string target = std::filesystem::read_symlink(entry.path(), gone);
    if (!gone && !target.ends_with("/fd")) descriptors.push_back(target);
  }
  std::ifstream statm("/proc/self/statm");
  long size = 0;
  statm >> size >> residentKilobytes;
  residentKilobytes *= sysconf(_SC_PAGESIZE) / 1024;
}

void Resources::ExpectNoMoreThan(const Resources& before) const {
  if (descriptors.size() > before.descriptors.size())
    Fail("%zu descriptors, and %zu before; the last is %s", descriptors.size(), before.descriptors.size(),
         descriptors.back().c_str());
  if (threads > before.threads) Fail("%zu threads, and %zu before", threads, before.threads);
  if (residentKilobytes > before.residentKilobytes + allocatorKeepsKilobytes)
    Fail("%ld KiB of memory, and %ld before", residentKilobytes, before.residentKilobytes);
  if (waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD) Fail("a child is left");
}

void Resources::ExpectSocketsAtMost(std::size_t limit) const {
  const auto sockets = static_cast<std::size_t>(std::count_if(
      descriptors.begin(), descriptors.end(), [](const std::string& target) { return target.starts_with("socket:"); }));
  if (sockets > limit) Fail("%zu sockets are kept", sockets);
}

}  // namespace soak
