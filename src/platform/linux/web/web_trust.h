// The trust store: where the certificates are that servers are verified by, and whether they are still the same.
#ifndef NVSUPPORT_PLATFORM_LINUX_WEB_TRUST_H
#define NVSUPPORT_PLATFORM_LINUX_WEB_TRUST_H

#include <cstdint>
#include <string>
#include <vector>

namespace platform {

struct TrustStore {
  std::string file;     // empty: none
  std::string folders;  // with colons between them; the same
  // Device, inode, size, and to the nanosecond the last changes of each. A file that is written over does not show in
  // its folder.
  std::vector<std::int64_t> state;

  bool operator==(const TrustStore&) const = default;
};

// As it is now.
TrustStore FindTrustStore();

}  // namespace platform

#endif
