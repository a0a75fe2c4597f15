#include "focus.h"

#include <algorithm>
#include <vector>

#include "controls.h"
#include "display_selection.h"
#include "styles.h"
#include "window_tree.h"

namespace user {
namespace {

HWND focused = nullptr;

void TellEdit(HWND control, WORD code) {
  if (FindControl(control, ControlKind::edit) != nullptr) NotifyDialog(control, code);
}

}  // namespace

HWND FocusedControlOfProcess() {
  return focused;
}

void GiveFocus(HWND control) {
  if (Window* dialog = FindDialog(DialogOf(control))) dialog->dialog->focus = control;
  if (control == focused) return;
  const HWND before = focused;
  focused = control;
  TellEdit(before, codeEditKillFocus);
  // The handler may have moved the focus on.
  if (focused == control) TellEdit(control, codeEditSetFocus);
}

void FocusControl(HWND control, bool selectAll) {
  const Window* window = Find(control);
  if (window == nullptr || window->dialog || !window->enabled) return;
  GiveFocus(control);
  Display* display = OpenedDisplay();
  if (display != nullptr && focused == control) display->SetFocus(control, selectAll);
}

void ForgetFocus(HWND window) {
  if (focused == window) focused = nullptr;
  Window* dialog = FindDialog(DialogOf(window));
  if (dialog != nullptr && dialog->dialog->focus == window) dialog->dialog->focus = nullptr;
}

HWND NextTabStop(HWND dialog, HWND from, bool backwards) {
  const Window* window = FindDialog(dialog);
  if (window == nullptr) return nullptr;
  std::vector<HWND> order = window->dialog->controls;
  if (backwards) std::reverse(order.begin(), order.end());
  const auto at = std::find(order.begin(), order.end(), from);
  if (at != order.end()) std::rotate(order.begin(), at + 1, order.end());
  for (const HWND control : order) {
    const Window* candidate = Find(control);
    if (candidate != nullptr && candidate->enabled && (candidate->style & styleTabStop) != 0) return control;
  }
  return nullptr;
}

}  // namespace user
