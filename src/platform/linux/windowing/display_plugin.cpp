// The display is a plugin beside the module, loaded with the first window.
#include <dlfcn.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
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
constexpr const char* wayOut =
    "; the plugin belongs beside the library and needs Qt 6 with Widgets (Debian: libqt6widgets6, qt6-qpa-plugins, "
    "libxcb-cursor0)";

std::string Beside(const std::string& module) {
  return module.substr(0, module.rfind('/') + 1) + pluginName;
}

// If the module was loaded through a symbolic link, the plugin may stand beside the link or beside its target.
std::string PluginPath() {
  char path[PATH_MAX];
  if (GetModuleFileNameA(GetModuleHandleA(nullptr), path, sizeof path) == 0) return pluginName;
  const std::string plugin = Beside(path);
  char target[PATH_MAX];
  if (access(plugin.c_str(), F_OK) == 0 || realpath(path, target) == nullptr) return plugin;
  const std::string pluginOfTarget = Beside(target);
  return access(pluginOfTarget.c_str(), F_OK) == 0 ? pluginOfTarget : plugin;
}

}  // namespace

// The plugin is never unmapped, because its toolkit would crash.
NvOpenDisplay FindDisplay(std::string& whyNot) {
  const std::string path = PluginPath();
  void* plugin = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  void* open = plugin != nullptr ? dlsym(plugin, openFunctionName) : nullptr;
  if (open == nullptr) {
    const char* error = dlerror();
    whyNot = (error != nullptr ? error : openFunctionName) + std::string(wayOut);
  } else {
    Trace(TraceArea::display, "plugin %s", path.c_str());
  }
  if (plugin != nullptr) dlclose(plugin);
  return reinterpret_cast<NvOpenDisplay>(open);
}

}  // namespace windowing
