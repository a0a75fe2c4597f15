#include "web_plugin.h"

#include <string>
#include <utility>

#include "plugin.h"

namespace platform {

WebPlugin::~WebPlugin() {
  if (void* const opened = handle) dlclose(opened);
}

std::unique_ptr<WebTransfer> WebPlugin::MakeTransfer() {
  if (const NvMakeWebTransfer opened = make) return std::unique_ptr<WebTransfer>(opened(NV_VERSION));
  PluginHandle plugin;
  std::string whyNot = "is of another version than the library";
  const auto found = reinterpret_cast<NvMakeWebTransfer>(
      OpenPlugin("nvsupport-web.so", "nvsupport_make_web_transfer", TraceArea::web, plugin, whyNot));
  std::unique_ptr<WebTransfer> transfer(found != nullptr ? found(NV_VERSION) : nullptr);
  if (!transfer) {
    Trace(TraceArea::web, "no exchange without the plugin nvsupport-web.so: %s", whyNot.c_str());
    return nullptr;
  }
  // Of threads that come here at once the first keeps it open; the loader has counted.
  void* none = nullptr;
  if (handle.compare_exchange_strong(none, plugin.get())) static_cast<void>(plugin.release());
  make = found;
  return transfer;
}

}  // namespace platform
