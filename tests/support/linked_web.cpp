#include "web_plugin.h"

extern "C" platform::WebTransfer* nvsupport_make_web_transfer(const char* version);

platform::WebPlugin::~WebPlugin() = default;

std::unique_ptr<platform::WebTransfer> platform::WebPlugin::MakeTransfer() {
  return std::unique_ptr<WebTransfer>(nvsupport_make_web_transfer(NV_VERSION));
}
