#include "modal_dialogs.h"

#include <utility>

#include "../module.h"
#include "../multibyte.h"
#include "../process.h"
#include "controls.h"
#include "dialog_creation.h"
#include "display_selection.h"
#include "window_tree.h"
#include "windowing.h"

namespace windowing {
namespace {

constexpr DWORD errorResourceNotFound = 1814;
constexpr DWORD errorInvalidData = 13;
constexpr DWORD errorNoInteractiveStation = 1459;
constexpr DWORD errorNotEnoughMemory = 8;
constexpr INT_PTR dialogFailed = -1;

// Any value but 0: the display chooses the font.
constexpr WPARAM dialogFont = 1;

constexpr const char* defaultCaption = "Error";

ModalRun* innermost = nullptr;

// The window that becomes the owner: the dialog of a window of the core's, the top-level window of one of the host's,
// or null.
HWND OwnerFor(Display& display, HWND window) {
  const std::uintptr_t foreign = ForeignId(window);
  if (foreign == 0) return DialogOf(window);
  return reinterpret_cast<HWND>(display.ForeignTopLevel(foreign));
}

// Keeps an owner of the core's disabled until Enable, which leaves it as it was before.
class DisabledOwner {
 public:
  DisabledOwner(Display& usedDisplay, HWND ownerOrNull) : display(usedDisplay) {
    Window* window = Find(ownerOrNull);
    if (window == nullptr || !window->enabled) return;
    display.SetEnabled(ownerOrNull, false);
    window->enabled = false;
    owner = ownerOrNull;
  }
  DisabledOwner(const DisabledOwner&) = delete;
  DisabledOwner& operator=(const DisabledOwner&) = delete;
  ~DisabledOwner() { Enable(); }

  void Enable() {
    const HWND disabled = std::exchange(owner, nullptr);
    Window* window = Find(disabled);
    if (window == nullptr) return;
    window->enabled = true;
    display.SetEnabled(disabled, true);
  }

 private:
  Display& display;
  HWND owner = nullptr;  // null when there is nothing to enable
};

// Destroys a dialog at the end of its run, even if an exception of a handler ends it.
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
  const HWND first = FirstTabStop(dialog);
  if (SendMessageA(dialog, WM_INITDIALOG, reinterpret_cast<WPARAM>(first), initParam) == 0) return;
  if (IsWindow(first)) FocusControl(first, true);
}

void Show(Display& display, HWND dialog) {
  display.ShowDialogWindow(dialog);
  const Window* window = FindDialog(dialog);
  // The owner's controls lose the focus even if the dialog has no control that takes it.
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

int ShowBox(MessageBoxView& box, HWND ownerWindow) {
  std::string whyNot;
  Display* display = OpenDisplay(whyNot);
  if (display == nullptr) return 0;
  const HWND owner = OwnerFor(*display, ownerWindow);
  box.owner = DialogOf(owner);
  box.foreignOwner = ForeignId(owner);
  const HWND focusBefore = FocusedControlOfProcess();
  DisabledOwner disabled(*display, owner);
  GiveFocus(nullptr);
  const int answer = display->RunMessageBox(box);
  disabled.Enable();
  if (IsWindow(focusBefore)) GiveFocus(focusBefore);
  return answer;
}

}  // namespace

ModalRun::ModalRun() : outer(std::exchange(innermost, this)) {}

ModalRun::~ModalRun() {
  innermost = outer;
}

void ModalRun::FailInnermost(std::exception_ptr exception) {
  if (innermost == nullptr || innermost->failure) return;
  innermost->failure = std::move(exception);
  innermost->ended = true;
}

}  // namespace windowing

INT_PTR DialogBoxParamA(HINSTANCE module, LPCSTR dialogTemplate, HWND owner, DLGPROC dialogProc, LPARAM initParam) {
  const windowing::Bytes bytes = windowing::FindDialogTemplate(module, dialogTemplate);
  if (bytes.empty()) return windowing::Fail(windowing::errorResourceNotFound);
  const auto form = windowing::ParseDialogTemplate(bytes);
  if (!form) return windowing::Fail(windowing::errorInvalidData);
  std::string whyNot;
  windowing::Display* display = windowing::OpenDisplay(whyNot);
  if (display == nullptr) {
    platform::WriteToStandardError("No display for the dialog \"" + form->title + "\": " + whyNot + "\n");
    return windowing::Fail(windowing::errorNoInteractiveStation);
  }
  return windowing::RunDialog(*display, *form, owner, dialogProc, initParam);
}

BOOL EndDialog(HWND dialog, INT_PTR result) {
  const windowing::Window* window = windowing::FindDialog(dialog);
  if (window == nullptr) return FALSE;
  windowing::ModalRun& run = *window->dialog->run;
  if (run.ended) return TRUE;
  run.result = result;
  run.ended = true;
  return TRUE;
}

// Without a display the text goes to standard error, so that it is not lost.
int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type) {
  windowing::MessageBoxView box{};
  box.text = platform::ToUtf8(text != nullptr ? text : "");
  box.caption = platform::ToUtf8(caption != nullptr ? caption : windowing::defaultCaption);
  box.type = type;
  const int answer = windowing::ShowBox(box, owner);
  if (answer == 0) platform::WriteToStandardError(box.caption + ": " + box.text + "\n");
  return answer;
}
