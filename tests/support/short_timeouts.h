// Time-outs of the web client that a test can wait for, in force while the object lives.
#ifndef NVSUPPORT_TESTS_SUPPORT_SHORT_TIMEOUTS_H
#define NVSUPPORT_TESTS_SUPPORT_SHORT_TIMEOUTS_H

#include <chrono>
#include <cstddef>
#include <utility>

#include "web_limits.h"

namespace nvsupport::testing {

class ShortTimeouts {
 public:
  static constexpr std::size_t replySize = 1'000'000;

  ShortTimeouts() = default;
  ~ShortTimeouts() { platform::webLimits = former; }
  ShortTimeouts(const ShortTimeouts&) = delete;
  ShortTimeouts& operator=(const ShortTimeouts&) = delete;

 private:
  static constexpr std::chrono::milliseconds brief{600};
  platform::WebLimits former =
      std::exchange(platform::webLimits,
                    {.connect = brief, .head = brief, .silence = brief, .exchange = 2 * brief, .replySize = replySize});
};

}  // namespace nvsupport::testing

#endif
