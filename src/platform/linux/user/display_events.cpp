#include "display_events.h"

#include "../multibyte.h"
#include "controls.h"
#include "dialog_manager.h"
#include "display_selection.h"
#include "focus.h"
#include "styles.h"
#include "window_tree.h"

namespace user {
namespace {

constexpr WPARAM leftButtonDown = 1;

// False for windows that are gone, disabled by a dialog of their own, or on their way out.
bool TakesInput(HWND window) {
  const Window* found = Find(window);
  const Window* dialog = FindDialog(DialogOf(window));
  return found != nullptr && found->enabled && dialog != nullptr && dialog->enabled && !dialog->dialog->run->ended;
}

LPARAM PackPoint(POINT point) {
  return static_cast<LPARAM>(PackWords(static_cast<WORD>(point.x), static_cast<WORD>(point.y)));
}

// No exception of a handler travels through the display that tells of the user's doings.
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
      window->text = platform::FromUtf8(text);
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
    IfItTakesInput(dialog, [=] { PressButton(dialog, IDCANCEL); });
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

  // The wheel is the dialog's, over whichever of its controls it turns: none of them scrolls.
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

DisplayEvents& CoreEvents() {
  static Events events;
  return events;
}

}  // namespace user
