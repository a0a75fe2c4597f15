// The module's plugins: code that needs a library which many hosts do without is loaded when it is first used.
#ifndef NVSUPPORT_PLATFORM_LINUX_PLUGIN_H
#define NVSUPPORT_PLATFORM_LINUX_PLUGIN_H

#include <dlfcn.h>

#include <string>

#include "base/scoped_handle.h"
#include "trace.h"

namespace platform {

using PluginHandle = base::ScopedHandle<void*, &dlclose>;

// Loads a plugin that lies beside the module and finds the one function that it exports. Null, with the reason, if one
// of the two is missing. The function may be called as long as the handle is open.
void* OpenPlugin(const char* name, const char* function, TraceArea area, PluginHandle& plugin, std::string& whyNot);

}  // namespace platform

#endif
