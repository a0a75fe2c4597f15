// What belongs to the host and the module leaves as it is.
#ifndef NVSUPPORT_FUZZ_SOAK_HOST_STATE_H
#define NVSUPPORT_FUZZ_SOAK_HOST_STATE_H

#include <signal.h>

#include <array>
#include <string>
#include <vector>

namespace soak {

// Locale, signal handlers, signal mask, environment, folder and file mask.
class HostState {
 public:
  HostState();
  std::string Difference() const;  // from now; empty if there is none

 private:
  std::string locale, folder;
  std::array<struct sigaction, NSIG> handlers{};
  sigset_t mask{};
  std::vector<std::string> environment;
  unsigned fileMask;
};

}  // namespace soak

#endif
