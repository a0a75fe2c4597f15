// The module's entry calls, which this system's loader does not have.
#include <exception>

#include "module.h"
#include "platform/platform.h"
#include "windowing/display_selection.h"

namespace platform {

ModuleEntry::ModuleEntry() {
  // Allocates what the loading thread needs for its first exception, which may be about the lack of memory.
  [[maybe_unused]] const volatile int touched = std::uncaught_exceptions();
  RememberModulePath();
  DllMain(GetModuleHandleA(nullptr), DLL_PROCESS_ATTACH, nullptr);
}

ModuleEntry::~ModuleEntry() {
  DllMain(GetModuleHandleA(nullptr), DLL_PROCESS_DETACH, nullptr);
  windowing::CloseDisplay();
}

}  // namespace platform
