#include "dialog_manager.h"

#include "controls.h"
#include "focus.h"
#include "styles.h"
#include "window_tree.h"

namespace user {
namespace {

// wParam is a control if lParam says so, else whether to go backwards in the tab order.
void MoveFocus(HWND dialog, WPARAM wParam, LPARAM lParam) {
  const Window* window = FindDialog(dialog);
  if (window == nullptr) return;
  const bool toControl = LOWORD(static_cast<std::uint64_t>(lParam)) != 0;
  const HWND control =
      toControl ? reinterpret_cast<HWND>(wParam) : NextTabStop(dialog, window->dialog->focus, wParam != 0);
  if (control != dialog && DialogOf(control) == dialog) FocusControl(control, true);
}

bool IsDefaultButton(const Window& window) {
  return window.kind == ControlKind::pushButton && (window.style & styleControlType) == styleDefaultPushButton;
}

int DefaultButtonId(const DialogState& dialog) {
  if (const Window* focused = FindControl(dialog.focus, ControlKind::pushButton)) return focused->id;
  for (const HWND control : dialog.controls) {
    const Window* window = Find(control);
    if (window != nullptr && IsDefaultButton(*window)) return window->id;
  }
  return IDOK;
}

}  // namespace

LRESULT CALLBACK DialogWindowProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  const Window* window = FindDialog(dialog);
  if (window == nullptr) return 0;
  const DLGPROC procedure = window->dialog->procedure;
  const INT_PTR handled = procedure != nullptr ? procedure(dialog, message, wParam, lParam) : FALSE;
  if (message == WM_INITDIALOG) return handled;
  if (handled != FALSE) return 0;
  switch (message) {
    case WM_CLOSE:
      PressButton(dialog, IDCANCEL);
      return 0;
    case WM_NEXTDLGCTL:
      MoveFocus(dialog, wParam, lParam);
      return 0;
    default:
      return DefaultWindowProcedure(dialog, message, wParam, lParam);
  }
}

void PressEnter(HWND dialog) {
  if (const Window* window = FindDialog(dialog)) PressButton(dialog, DefaultButtonId(*window->dialog));
}

void PressButton(HWND dialog, int id) {
  const HWND button = GetDlgItem(dialog, id);
  const Window* window = Find(button);
  if (window != nullptr && !window->enabled) return;
  SendMessageA(dialog, WM_COMMAND, PackWords(static_cast<WORD>(id), codeButtonClicked),
               reinterpret_cast<LPARAM>(button));
}

}  // namespace user
