// Modal dialogs from opening to end.
#include <cstdio>

#include "../module.h"
#include "dialog_windows.h"
#include "display_selection.h"
#include "focus.h"
#include "owner.h"
#include "styles.h"
#include "user.h"

namespace user {
namespace {

constexpr DWORD errorResourceNotFound = 1814;
constexpr DWORD errorInvalidData = 13;
constexpr DWORD errorNoInteractiveStation = 1459;
constexpr DWORD errorNotEnoughMemory = 8;
constexpr INT_PTR dialogFailed = -1;

// Any value but 0: the display chooses the font.
constexpr WPARAM dialogFont = 1;

// Takes a dialog down with the run that shows it, even if an exception of a handler ends that.
class DialogLife {
 public:
  explicit DialogLife(HWND opened) : dialog(opened) {}
  DialogLife(const DialogLife&) = delete;
  DialogLife& operator=(const DialogLife&) = delete;
  ~DialogLife() { DestroyWindow(dialog); }

 private:
  HWND dialog;
};

INT_PTR Fail(DWORD error) {
  SetLastError(error);
  return dialogFailed;
}

void Initialise(HWND dialog, const DialogTemplate& form, LPARAM initParam) {
  if ((form.style & styleSetFont) != 0) SendMessageA(dialog, WM_SETFONT, dialogFont, FALSE);
  const HWND first = NextTabStop(dialog, nullptr, false);
  if (SendMessageA(dialog, WM_INITDIALOG, reinterpret_cast<WPARAM>(first), initParam) == 0) return;
  if (IsWindow(first)) FocusControl(first, true);
}

void Show(Display& display, HWND dialog) {
  display.ShowDialogWindow(dialog);
  const Window* window = FindDialog(dialog);
  // The owner's controls lose the focus to the dialog even if none of its own has it.
  if (window != nullptr && DialogOf(FocusedControlOfProcess()) != dialog) GiveFocus(window->dialog->focus);
}

void RunUntilEnded(Display& display, HWND dialog, const DialogTemplate& form, LPARAM initParam, const ModalRun& run) {
  Initialise(dialog, form, initParam);
  if (!run.ended) Show(display, dialog);
  if (!run.ended) display.RunModal(dialog, run.ended);
}

INT_PTR RunDialog(Display& display, const DialogTemplate& form, HWND ownerWindow, DLGPROC procedure, LPARAM initParam) {
  const HWND owner = OwnerFor(display, ownerWindow);
  const HWND focusBefore = FocusedControlOfProcess();
  DisabledOwner disabled(display, owner);
  ModalRun run;
  const HWND dialog = CreateDialogWindows(display, form, owner, procedure, run);
  if (dialog == nullptr) return Fail(errorNotEnoughMemory);
  const DialogLife life(dialog);
  RunUntilEnded(display, dialog, form, initParam, run);
  disabled.Enable();
  GiveFocus(IsWindow(focusBefore) ? focusBefore : nullptr);
  DestroyWindow(dialog);
  if (run.failure) std::rethrow_exception(run.failure);
  return run.result;
}

}  // namespace
}  // namespace user

INT_PTR DialogBoxParamA(HINSTANCE module, LPCSTR dialogTemplate, HWND owner, DLGPROC dialogProc, LPARAM initParam) {
  const user::Bytes bytes = user::FindDialogTemplate(module, dialogTemplate);
  if (bytes.empty()) return user::Fail(user::errorResourceNotFound);
  const auto form = user::ParseDialogTemplate(bytes);
  if (!form) return user::Fail(user::errorInvalidData);
  user::Display* display = user::OpenDisplay();
  if (display == nullptr) {
    std::fprintf(stderr, "No display for the dialog \"%s\"\n", form->title.c_str());
    return user::Fail(user::errorNoInteractiveStation);
  }
  return user::RunDialog(*display, *form, owner, dialogProc, initParam);
}

BOOL EndDialog(HWND dialog, INT_PTR result) {
  const user::Window* window = user::FindDialog(dialog);
  if (window == nullptr) return FALSE;
  user::ModalRun& run = *window->dialog->run;
  if (run.ended) return TRUE;
  run.result = result;
  run.ended = true;
  return TRUE;
}
