// What makes the transfers of the web client: a plugin beside the module, loaded with the first one, so that a host
// that is never online does not pay for libcurl.
#ifndef NVSUPPORT_PLATFORM_LINUX_WEB_PLUGIN_H
#define NVSUPPORT_PLATFORM_LINUX_WEB_PLUGIN_H

#include <atomic>
#include <memory>

#include "web_transfer.h"

namespace platform {

// Outlives the transfers that it made. A program that is built from the library's objects may define the members in
// another way, and do without the plugin.
class WebPlugin {
 public:
  WebPlugin() = default;
  ~WebPlugin();
  WebPlugin(const WebPlugin&) = delete;
  WebPlugin& operator=(const WebPlugin&) = delete;

  // Null if there is no usable plugin; the trace says why, and the next call looks for it again. Threads may come
  // at once: without a lock, which a child that the host forks meanwhile would find locked.
  std::unique_ptr<WebTransfer> MakeTransfer();

 private:
  std::atomic<void*> handle = nullptr;
  std::atomic<NvMakeWebTransfer> make = nullptr;
};

}  // namespace platform

#endif
