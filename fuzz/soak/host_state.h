// What belongs to the host and what the module takes of it: looked at before and after, so that any difference shows.
#ifndef NVSUPPORT_FUZZ_SOAK_HOST_STATE_H
#define NVSUPPORT_FUZZ_SOAK_HOST_STATE_H

#include <signal.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace soak {

// Locale, signal handlers, signal mask, environment, folder and file mask.
class HostState {
 public:
  HostState();
  void ExpectUnchanged() const;  // fails the run otherwise

 private:
  std::string locale, folder;
  std::array<struct sigaction, NSIG> handlers{};
  sigset_t mask{};
  std::vector<std::string> environment;
  unsigned fileMask;
};

// Descriptors, threads and memory of this process.
class Resources {
 public:
  Resources();
  // With the module unloaded: as before, and no child is left. Memory may grow by what its allocator keeps.
  void ExpectNoMoreThan(const Resources& before) const;
  void ExpectSocketsAtMost(std::size_t limit) const;

 private:
  std::vector<std::string> descriptors;  // what each leads to
  std::size_t threads = 0;
  long residentKilobytes = 0;
};

}  // namespace soak

#endif
