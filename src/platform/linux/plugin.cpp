#include "plugin.h"

#include <unistd.h>

#include <climits>
#include <cstdlib>

#include "module.h"

namespace platform {
namespace {

std::string Beside(const std::string& module, const char* name) {
  return module.substr(0, module.rfind('/') + 1) + name;
}

// If the module was loaded through a symbolic link, the plugin may stand beside the link or beside its target.
std::string PluginPath(const char* name) {
  char path[PATH_MAX];
  if (GetModuleFileNameA(GetModuleHandleA(nullptr), path, sizeof path) == 0) return name;
  std::string plugin = Beside(path, name);
  char target[PATH_MAX];
  if (access(plugin.c_str(), F_OK) == 0 || realpath(path, target) == nullptr) return plugin;
  const std::string pluginOfTarget = Beside(target, name);
  return access(pluginOfTarget.c_str(), F_OK) == 0 ? pluginOfTarget : plugin;
}

}  // namespace

void* OpenPlugin(const char* name, const char* function, TraceArea area, PluginHandle& plugin, std::string& whyNot) {
  const std::string path = PluginPath(name);
  plugin.reset(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
  void* const found = plugin ? dlsym(plugin.get(), function) : nullptr;
  if (found != nullptr) {
    Trace(area, "plugin %s", path.c_str());
  } else {
    const char* const error = dlerror();
    whyNot = error != nullptr ? error : function;
  }
  return found;
}

}  // namespace platform
