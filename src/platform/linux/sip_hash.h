// SipHash-2-4: a short keyed hash, from which the hashed text cannot be worked back.
#ifndef NVSUPPORT_PLATFORM_LINUX_SIP_HASH_H
#define NVSUPPORT_PLATFORM_LINUX_SIP_HASH_H

#include <cstdint>
#include <string_view>

namespace platform {

struct SipKey {
  std::uint64_t low;
  std::uint64_t high;
};

std::uint64_t SipHash(const SipKey& key, std::string_view text);

}  // namespace platform

#endif
