// The display is a plugin beside the module, loaded with the first window.
#include <dlfcn.h>

#include <string>

#include "../module.h"
#include "../trace.h"
#include "display_selection.h"

namespace windowing {
namespace {

using platform::Trace;
using platform::TraceArea;

constexpr const char* pluginName = "nvsupport-qt.so";
constexpr const char* openFunctionName = "nvsupport_open_display";
constexpr DWORD longestPath = 4096;

std::string PluginPath() {
  char path[longestPath];
  if (GetModuleFileNameA(GetModuleHandleA(nullptr), path, sizeof path) == 0) return {};
  const std::string module = path;
  const std::size_t folderEnd = module.rfind('/');
  return folderEnd != std::string::npos ? module.substr(0, folderEnd + 1) + pluginName : std::string();
}

}  // namespace

// Never unmapped, because toolkits do not bear that.
NvOpenDisplay FindDisplay() {
  const std::string path = PluginPath();
  void* plugin = path.empty() ? nullptr : dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (plugin == nullptr) {
    Trace(TraceArea::display, "no plugin \"%s\": %s", path.c_str(), path.empty() ? "where is the module?" : dlerror());
    return nullptr;
  }
  const auto open = reinterpret_cast<NvOpenDisplay>(dlsym(plugin, openFunctionName));
  Trace(TraceArea::display, open != nullptr ? "plugin %s" : "plugin %s is of another kind", path.c_str());
  dlclose(plugin);
  return open;
}

}  // namespace windowing
