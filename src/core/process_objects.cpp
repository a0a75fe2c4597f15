// All process-wide objects, in the order in which they come to life; they go in the reverse order. Their
// declarations stand in the headers of their owners.
#include "core/module_handle.h"
#include "platform/platform.h"

namespace nvsupport {

HINSTANCE g_moduleHandle = nullptr;

// Last: calls the module's entry when everything above lives, and again before any of it goes.
static const platform::ModuleEntry moduleEntry;

}  // namespace nvsupport
