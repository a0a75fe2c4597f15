// The trust store: where the certificates lie that servers are verified by, and whether they have changed.
#ifndef NVSUPPORT_PLATFORM_LINUX_WEB_TRUST_H
#define NVSUPPORT_PLATFORM_LINUX_WEB_TRUST_H

#include <cstdint>
#include <string>
#include <vector>

namespace platform {

struct TrustStore {
  std::string file;     // empty: none
  std::string folders;  // separated by colons; empty: none
  // Device, inode, size and times of the last changes, in nanoseconds, of the file and of each folder. Writing over a
  // file in a folder changes nothing here.
  std::vector<std::int64_t> state;

  bool operator==(const TrustStore&) const = default;
};

// As it is now.
TrustStore FindTrustStore();

}  // namespace platform

#endif
