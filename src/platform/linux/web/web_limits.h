// How long the web client waits, and how much it takes.
#ifndef NVSUPPORT_PLATFORM_LINUX_WEB_LIMITS_H
#define NVSUPPORT_PLATFORM_LINUX_WEB_LIMITS_H

#include <chrono>
#include <cstddef>

namespace platform {

// Times during which nothing comes that the caller can see. Tests shorten them.
struct WebLimits {
  std::chrono::milliseconds connect{60'000};
  std::chrono::milliseconds head{60'000};     // from sending to the head of the final reply, redirects included
  std::chrono::milliseconds silence{60'000};  // without a byte of the body, while the caller waits for one
  // For an exchange with a body, which the caller cannot stop:
  std::chrono::milliseconds exchange{120'000};            // from sending to the last byte read
  std::size_t replySize = std::size_t{64} * 1024 * 1024;  // bytes
  // How long a connection may idle and still be used. A request with a body cannot be repeated, so it is sent only on a
  // connection that is almost certainly open; common servers close after a few seconds.
  std::chrono::milliseconds idle{30'000};
  std::chrono::milliseconds idleBeforeBody{1'000};
};
inline WebLimits webLimits;

}  // namespace platform

#endif
