// Time-outs of the web client that a test can wait for, in force while the object lives.
#ifndef NVSUPPORT_TESTS_SUPPORT_SHORT_TIMEOUTS_H
#define NVSUPPORT_TESTS_SUPPORT_SHORT_TIMEOUTS_H

#include <chrono>
#include <utility>

#include "web_curl.h"

namespace nvsupport::testing {

class ShortTimeouts {
 public:
  ShortTimeouts() = default;
  ~ShortTimeouts() { platform::webTimeouts = former; }
  ShortTimeouts(const ShortTimeouts&) = delete;
  ShortTimeouts& operator=(const ShortTimeouts&) = delete;

 private:
  static constexpr std::chrono::milliseconds brief{300};
  platform::WebTimeouts former = std::exchange(platform::webTimeouts, {.connect = brief, .silence = brief});
};

}  // namespace nvsupport::testing

#endif
