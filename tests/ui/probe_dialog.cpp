#include "probe_dialog.h"

#include "platform/linux/user/resources.h"

extern "C" const unsigned char ui_test_dialogs_begin[];
extern "C" const unsigned char ui_test_dialogs_end[];

namespace nvsupport {

void AddTestDialogs() {
  static const bool added = [] {
    user::AddResources(GetModuleHandleA(nullptr), {ui_test_dialogs_begin, ui_test_dialogs_end});
    return true;
  }();
  static_cast<void>(added);
}

}  // namespace nvsupport
