// How long the web client waits, and how much it takes.
#ifndef NVSUPPORT_PLATFORM_LINUX_WEB_LIMITS_H
#define NVSUPPORT_PLATFORM_LINUX_WEB_LIMITS_H

#include <chrono>
#include <cstddef>

namespace platform {

// Only what the caller can see counts as progress. Tests shorten them.
struct WebLimits {
  std::chrono::milliseconds connect{60'000};
  std::chrono::milliseconds head{60'000};     // from sending to the head of the final reply, redirects included
  std::chrono::milliseconds silence{60'000};  // without a byte of the body, while the caller waits for one
  // Of an exchange with a body, whose caller cannot stop it:
  std::chrono::milliseconds exchange{120'000};            // from sending to the last byte read
  std::size_t replySize = std::size_t{64} * 1024 * 1024;  // bytes
  // How long a connection may idle and still be used: for a request with a body only while it is almost certainly
  // open, because the request cannot be repeated. Common servers close after a few seconds.
  std::chrono::milliseconds idle{30'000};
  std::chrono::milliseconds idleBeforeBody{1'000};
};
inline WebLimits webLimits;

}  // namespace platform

#endif
