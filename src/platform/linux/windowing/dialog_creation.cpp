#include "dialog_creation.h"

#include <utility>

#include "../multibyte.h"
#include "controls.h"
#include "dialog_manager.h"
#include "display_selection.h"
#include "modal_dialogs.h"

namespace windowing {
namespace {

HWND CreateControl(const ControlTemplate& form, HWND dialog, POINT base) {
  platform::SecretText text(platform::FromUtf8(form.text));  // first: if it throws there is no window yet
  Window& window = NewWindow();
  window.parent = dialog;
  window.kind = form.kind;
  window.id = form.id;
  window.style = form.style;
  window.rectangle = ToPixels(form.place, base);
  window.text = std::move(text);
  window.procedure = ControlProcedure(form.kind);
  window.enabled = (form.style & styleDisabled) == 0;
  return window.handle;
}

ControlView ViewOfControl(const Window& window) {
  const LONG_PTR type = window.style & styleControlType;
  ControlView view{};
  view.handle = window.handle;
  view.kind = window.kind;
  view.id = window.id;
  view.rectangle = window.rectangle;
  view.text = platform::ToUtf8(window.text.view());
  view.alignRight = window.kind == ControlKind::label && type == styleLabelRight;
  view.password = window.kind == ControlKind::edit && (window.style & stylePassword) != 0;
  view.defaultButton = window.kind == ControlKind::pushButton && type == styleDefaultPushButton;
  view.threeState = window.kind == ControlKind::checkBox && (type == styleThreeState || type == styleAutoThreeState);
  view.tabStop = (window.style & styleTabStop) != 0;
  return view;
}

DialogView ViewOfDialog(const Window& dialog, const RECT& client) {
  DialogView view{};
  view.handle = dialog.handle;
  view.owner = DialogOf(dialog.dialog->owner);
  view.foreignOwner = ForeignId(dialog.dialog->owner);
  view.title = platform::ToUtf8(dialog.text.view());
  view.width = client.right - client.left;
  view.height = client.bottom - client.top;
  for (const HWND control : dialog.dialog->controls) view.controls.push_back(ViewOfControl(*Find(control)));
  return view;
}

void RemoveWindows(HWND dialog) {
  for (const HWND control : FindDialog(dialog)->dialog->controls) RemoveWindow(control);
  RemoveWindow(dialog);
}

void DisableOnDisplay(Display& display, const DialogState& dialog) {
  for (const HWND control : dialog.controls) {
    if (!Find(control)->enabled) display.SetEnabled(control, false);
  }
}

// The window goes even if a handler of these messages fails.
void SendLastMessage(HWND handle, UINT message) {
  ModalRun::Contain([=] { SendMessageA(handle, message, 0, 0); });
}

// Sends a window its last messages; after them it is gone from the core. Allocates no memory, because this also runs
// when there is none left.
void TakeDown(HWND handle) {
  Window* window = Find(handle);
  if (window == nullptr || window->destroying) return;
  window->destroying = true;
  while (const HWND owned = OwnedDialog(handle)) DestroyWindow(owned);
  SendLastMessage(handle, WM_DESTROY);
  ForgetFocus(handle);
  for (std::size_t at = 0;; ++at) {
    window = FindDialog(handle);
    if (window == nullptr || at == window->dialog->controls.size()) break;
    TakeDown(window->dialog->controls[at]);
  }
  SendLastMessage(handle, WM_NCDESTROY);
  RemoveWindow(handle);
}

}  // namespace

HWND CreateDialogWindows(Display& display, const DialogTemplate& form, HWND owner, DLGPROC procedure, ModalRun& run) {
  const POINT base = display.BaseUnits();
  platform::SecretText title(platform::FromUtf8(form.title));
  Window& window = NewWindow();
  const HWND handle = window.handle;
  window.style = form.style;
  window.text = std::move(title);
  window.procedure = DialogWindowProcedure;
  window.dialog.emplace(DialogState{procedure, owner, &run, {}});
  try {
    window.dialog->controls.reserve(form.controls.size());
    for (const ControlTemplate& control : form.controls) {
      window.dialog->controls.push_back(CreateControl(control, handle, base));
    }
    if (!display.CreateDialogWindow(ViewOfDialog(window, ToPixels(form.place, base)))) {
      RemoveWindows(handle);
      return nullptr;
    }
    DisableOnDisplay(display, *window.dialog);
  } catch (...) {
    display.DestroyDialogWindow(handle);
    RemoveWindows(handle);
    throw;
  }
  return handle;
}

}  // namespace windowing

BOOL DestroyWindow(HWND handle) {
  const windowing::Window* window = windowing::Find(handle);
  if (window == nullptr || window->destroying) return FALSE;
  // Destroying a dialog also ends its modal run, as EndDialog does.
  if (window->dialog) window->dialog->run->ended = true;
  const bool isDialog = window->dialog.has_value();
  windowing::TakeDown(handle);
  windowing::Display* display = windowing::OpenedDisplay();
  if (isDialog && display != nullptr) display->DestroyDialogWindow(handle);
  return TRUE;
}
