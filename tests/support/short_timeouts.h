// Time-outs of the web client that a test can wait for, in force while the object lives.
#ifndef NVSUPPORT_TESTS_SUPPORT_SHORT_TIMEOUTS_H
#define NVSUPPORT_TESTS_SUPPORT_SHORT_TIMEOUTS_H

#include "web/web_limits.h"

namespace nvsupport::testing {

struct ShortTimeouts {
  ShortTimeouts() {
    platform::webLimits = {
        .connect = brief, .head = brief, .silence = brief, .exchange = 2 * brief, .replySize = replySize};
  }
  ~ShortTimeouts() { platform::webLimits = {}; }

  static constexpr std::chrono::milliseconds brief{600};
  static constexpr std::size_t replySize = 1'000'000;
};

}  // namespace nvsupport::testing

#endif
