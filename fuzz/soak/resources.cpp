#include "resources.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>

#include "events.h"

namespace soak {
namespace {

constexpr long allocatorKeepsKilobytes = 8 << 10;

std::size_t CountEntries(const char* folder) {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

}  // namespace

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
