// What happens when the platform loads and unloads the module.
#include "core/module_handle.h"
#include "platform/platform.h"

namespace nvsupport {
namespace {

void Attach(HINSTANCE module) {
  g_moduleHandle = module;
}

void Detach() {}

}  // namespace
}  // namespace nvsupport

BOOL APIENTRY DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) nvsupport::Attach(module);
  if (reason == DLL_PROCESS_DETACH) nvsupport::Detach();
  return TRUE;
}
