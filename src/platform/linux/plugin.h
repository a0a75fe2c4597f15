// The module's plugins: what needs a library that most hosts do without is loaded when it is first used.
#ifndef NVSUPPORT_PLATFORM_LINUX_PLUGIN_H
#define NVSUPPORT_PLATFORM_LINUX_PLUGIN_H

#include <dlfcn.h>

#include <string>

#include "base/scoped_handle.h"
#include "trace.h"

namespace platform {

using PluginHandle = base::ScopedHandle<void*, &dlclose>;

// Loads a plugin that lies beside the module and finds the one function that it exports; null, with the reason, where
// either is missing. The function is there as long as the handle is open.
void* OpenPlugin(const char* name, const char* function, TraceArea area, PluginHandle& plugin, std::string& whyNot);

}  // namespace platform

#endif
