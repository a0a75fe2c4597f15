// The plugin's one export.
#include <cstring>
#include <type_traits>

#include "web/web_exchange.h"

extern "C" __attribute__((visibility("default"))) platform::WebTransfer* nvsupport_make_web_transfer(
    const char* version) {
  return std::strcmp(version, NV_VERSION) == 0 ? new platform::WebExchange() : nullptr;
}

static_assert(std::is_same_v<decltype(&nvsupport_make_web_transfer), NvMakeWebTransfer>);
