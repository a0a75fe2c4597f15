#include "dialog_manager.h"

#include "../multibyte.h"
#include "controls.h"
#include "display_selection.h"
#include "modal_dialogs.h"
#include "window_tree.h"

namespace windowing {
namespace {

constexpr WPARAM leftButtonDown = 1;

// Moves the focus to a control of this dialog. Moves in tab order are the display's.
void MoveFocus(HWND dialog, HWND control) {
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

// Sends the command of the button with this id, even if the dialog has no such button. A disabled one sends nothing.
void PressButton(HWND dialog, int id) {
  const HWND button = GetDlgItem(dialog, id);
  const Window* window = Find(button);
  if (window != nullptr && !window->enabled) return;
  SendMessageA(dialog, WM_COMMAND, PackWords(static_cast<WORD>(id), codeButtonClicked),
               reinterpret_cast<LPARAM>(button));
}

// Sends the command of the button with the focus, else of the default button, else IDOK.
void PressEnter(HWND dialog) {
  if (const Window* window = FindDialog(dialog)) PressButton(dialog, DefaultButtonId(*window->dialog));
}

// Esc and the close box mean Cancel.
void PressEscape(HWND dialog) {
  PressButton(dialog, IDCANCEL);
}

// False for a window that is gone, is about to go, or is disabled by a dialog that it owns.
bool TakesInput(HWND window) {
  const Window* found = Find(window);
  const Window* dialog = FindDialog(DialogOf(window));
  return found != nullptr && found->enabled && dialog != nullptr && dialog->enabled && !dialog->dialog->run->ended;
}

LPARAM PackPoint(POINT point) {
  return static_cast<LPARAM>(PackWords(static_cast<WORD>(point.x), static_cast<WORD>(point.y)));
}

// The display's code makes these calls, so no exception of a handler may leave them.
template <typename Action>
void IfItTakesInput(HWND window, Action action) {
  ModalRun::Contain([&] {
    if (TakesInput(window)) action();
  });
}

class Events final : public DisplayEvents {
 public:
  void OnClick(HWND control) override {
    IfItTakesInput(control, [=] { ClickButton(control); });
  }

  void OnTextEdited(HWND edit, const std::string& text) override {
    IfItTakesInput(edit, [&] {
      Window* window = FindControl(edit, ControlKind::edit);
      if (window == nullptr) return;
      std::string typed = platform::FromUtf8(text);
      window->text = typed;
      platform::WipeText(typed);
      NotifyTextChange(edit);
    });
  }

  void OnFocus(HWND control) override {
    IfItTakesInput(control, [=] { GiveFocus(control); });
  }

  void OnEnter(HWND dialog) override {
    IfItTakesInput(dialog, [=] { PressEnter(dialog); });
  }

  void OnEscape(HWND dialog) override {
    IfItTakesInput(dialog, [=] { PressEscape(dialog); });
  }

  void OnCloseBox(HWND dialog) override {
    IfItTakesInput(dialog, [=] { SendMessageA(dialog, WM_CLOSE, 0, 0); });
  }

  void OnDragged(HWND dialog) override {
    Display* display = OpenedDisplay();
    if (display == nullptr) return;
    IfItTakesInput(dialog, [=] {
      RECT rectangle = display->WindowRect(dialog);
      SendMessageA(dialog, WM_MOVING, 0, reinterpret_cast<LPARAM>(&rectangle));
      SendMessageA(dialog, WM_MOVE, 0, PackPoint(display->ClientOrigin(dialog)));
    });
  }

  // No control scrolls, so the dialog gets the wheel, whichever control the pointer is over.
  void OnWheel(HWND window, int delta, POINT screenPoint) override {
    IfItTakesInput(window, [=] {
      SendMessageA(DialogOf(window), WM_MOUSEWHEEL, PackWords(0, static_cast<WORD>(delta)), PackPoint(screenPoint));
    });
  }

  void OnLeftButton(HWND window, bool doubleClick, POINT clientPoint) override {
    IfItTakesInput(window, [=] {
      SendMessageA(window, doubleClick ? WM_LBUTTONDBLCLK : WM_LBUTTONDOWN, leftButtonDown, PackPoint(clientPoint));
    });
  }
};

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
      PressEscape(dialog);
      return 0;
    case WM_NEXTDLGCTL:
      MoveFocus(dialog, reinterpret_cast<HWND>(wParam));
      return 0;
    default:
      return DefaultWindowProcedure(dialog, message, wParam, lParam);
  }
}

DisplayEvents& CoreEvents() {
  static Events events;
  return events;
}

}  // namespace windowing
