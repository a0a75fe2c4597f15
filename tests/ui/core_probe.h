// A dialog on the bare user core, whose procedure notes every message and does what a test asks for.
#ifndef NVSUPPORT_TESTS_UI_CORE_PROBE_H
#define NVSUPPORT_TESTS_UI_CORE_PROBE_H

#include <functional>
#include <string>
#include <vector>

#include "core_dialog_ids.h"
#include "platform/platform.h"

class CoreProbe {
 public:
  using Reaction = std::function<INT_PTR(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)>;

  explicit CoreProbe(Reaction onMessage = {}) : react(std::move(onMessage)) {}
  INT_PTR Run(WORD id, HWND owner = nullptr);

  HWND dialog = nullptr;
  std::vector<std::string> seen;  // "INITDIALOG", "COMMAND 10 300" with id and code (hexadecimal)

 private:
  static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

  Reaction react;
};

// Nothing but the commands of buttons: ends the dialog with the button's id.
INT_PTR EndOnButton(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

#endif
