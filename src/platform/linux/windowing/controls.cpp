#include "controls.h"

#include <algorithm>
#include <cstring>

#include "../multibyte.h"
#include "display_selection.h"
#include "window_tree.h"

namespace windowing {
namespace {

constexpr int stateIndeterminate = 2;

LRESULT SetText(Window& window, LPARAM text) {
  window.text = text != 0 ? reinterpret_cast<LPCSTR>(text) : "";
  if (Display* display = OpenedDisplay()) {
    std::string shown = platform::ToUtf8(window.text.view());
    display->SetText(window.handle, shown);
    platform::WipeText(shown);
  }
  return TRUE;
}

LRESULT CopyText(const Window& window, WPARAM size, LPARAM buffer) {
  if (size == 0 || buffer == 0) return 0;
  const std::size_t length = std::min<std::size_t>(size - 1, window.text.view().size());
  char* to = reinterpret_cast<LPSTR>(buffer);
  std::memcpy(to, window.text.c_str(), length);
  to[length] = '\0';
  return static_cast<LRESULT>(length);
}

int LargestCheckState(LONG_PTR style) {
  switch (style & styleControlType) {
    case styleCheckBox:
    case styleAutoCheckBox:
      return 1;
    case styleThreeState:
    case styleAutoThreeState:
      return stateIndeterminate;
    default:
      return 0;
  }
}

void SetCheckState(Window& button, int state) {
  button.checkState = state;
  if (Display* display = OpenedDisplay()) display->SetCheck(button.handle, state);
}

LRESULT CALLBACK EditProcedure(HWND edit, UINT message, WPARAM wParam, LPARAM lParam) {
  const LRESULT result = DefaultWindowProcedure(edit, message, wParam, lParam);
  if (message == WM_SETTEXT) NotifyTextChange(edit);
  return result;
}

LRESULT CALLBACK ButtonProcedure(HWND button, UINT message, WPARAM wParam, LPARAM lParam) {
  Window* window = Find(button);
  if (window == nullptr) return 0;
  switch (message) {
    case BM_GETCHECK:
      return window->checkState;
    case BM_SETCHECK: {
      const int largest = LargestCheckState(window->style);
      if (largest > 0) SetCheckState(*window, static_cast<int>(std::min<WPARAM>(wParam, WPARAM(largest))));
      return 0;
    }
    case BM_CLICK:
      ClickButton(button);
      return 0;
    default:
      return DefaultWindowProcedure(button, message, wParam, lParam);
  }
}

HWND focused = nullptr;

void TellEdit(HWND control, WORD code) {
  if (FindControl(control, ControlKind::edit) != nullptr) NotifyDialog(control, code);
}

}  // namespace

WNDPROC ControlProcedure(ControlKind kind) {
  switch (kind) {
    case ControlKind::label:
      return DefaultWindowProcedure;
    case ControlKind::edit:
      return EditProcedure;
    default:
      return ButtonProcedure;
  }
}

LRESULT CALLBACK DefaultWindowProcedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
  Window* window = Find(handle);
  if (window == nullptr) return 0;
  switch (message) {
    case WM_SETTEXT:
      return SetText(*window, lParam);
    case WM_GETTEXT:
      return CopyText(*window, wParam, lParam);
    case WM_GETTEXTLENGTH:
      return static_cast<LRESULT>(window->text.view().size());
    default:
      return 0;
  }
}

void NotifyDialog(HWND control, WORD code) {
  const Window* window = Find(control);
  if (window == nullptr) return;
  SendMessageA(window->parent, WM_COMMAND, PackWords(static_cast<WORD>(window->id), code),
               reinterpret_cast<LPARAM>(control));
}

void NotifyTextChange(HWND edit) {
  NotifyDialog(edit, codeEditUpdate);
  NotifyDialog(edit, codeEditChange);
}

void ClickButton(HWND button) {
  FocusControl(button, false);
  Window* window = Find(button);
  if (window == nullptr || window->dialog || !window->enabled) return;
  const LONG_PTR type = window->style & styleControlType;
  if (type == styleAutoCheckBox || type == styleAutoThreeState) {
    SetCheckState(*window, window->checkState < LargestCheckState(window->style) ? window->checkState + 1 : 0);
  }
  NotifyDialog(button, codeButtonClicked);
}

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

HWND FirstTabStop(HWND dialog) {
  const Window* window = FindDialog(dialog);
  if (window == nullptr) return nullptr;
  for (const HWND control : window->dialog->controls) {
    const Window* candidate = Find(control);
    if (candidate != nullptr && candidate->enabled && (candidate->style & styleTabStop) != 0) return control;
  }
  return nullptr;
}

}  // namespace windowing
