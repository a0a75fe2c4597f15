// What happens when the platform loads and unloads the module.
#include <exception>

#include "account/service_manager.h"
#include "base/process_wide.h"
#include "language/translation_catalogue.h"
#include "platform/platform.h"
#include "ui/dialog.h"
#include "ui/message.h"

namespace nvsupport {
namespace {

void Attach(HINSTANCE module) {
  g_moduleHandle = module;
  try {
    translations.Init(module);
    SetMessageCaption(std::string(Translate("Account Manager")));
  } catch (const std::exception&) {
    // Out of memory: the texts that are there stay in force, and loading goes on.
  }
}

void Detach() {
  CloseSession();
}

}  // namespace
}  // namespace nvsupport

BOOL APIENTRY DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) nvsupport::Attach(module);
  if (reason == DLL_PROCESS_DETACH && base::Call::AllEnded()) nvsupport::Detach();
  return TRUE;
}
