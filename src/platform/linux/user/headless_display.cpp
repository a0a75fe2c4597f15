#include "headless_display.h"

#include <memory>
#include <optional>

#include "display_events.h"
#include "display_selection.h"
#include "user.h"
#include "window_tree.h"

namespace user {
namespace {

constexpr POINT baseUnits{7, 13};
constexpr POINT pointerPosition{100, 100};
constexpr int mostIdleCalls = 1000;

struct ShownDialog {
  DialogView view;
  POINT topLeft{0, 0};
};

struct HeadlessState {
  HeadlessUser* user = nullptr;
  HeadlessScreen screen;
  HeadlessRecord record;
  std::map<HWND, ShownDialog> dialogs;
  std::map<HWND, HWND> dialogOfControl;
  std::map<HWND, int> checkStates;
  std::map<HWND, bool> enabled;  // true where nothing else was said
};

std::unique_ptr<HeadlessState> currentState;

HeadlessState& State() {
  if (currentState == nullptr) currentState = std::make_unique<HeadlessState>();
  return *currentState;
}

HWND DialogShowing(HWND window) {
  const auto control = State().dialogOfControl.find(window);
  return control != State().dialogOfControl.end() ? control->second : window;
}

ControlView* ViewOfControl(HWND control) {
  const auto dialog = State().dialogs.find(DialogShowing(control));
  if (dialog == State().dialogs.end()) return nullptr;
  for (ControlView& view : dialog->second.view.controls) {
    if (view.handle == control) return &view;
  }
  return nullptr;
}

class HeadlessDisplay final : public Display {
 public:
  POINT BaseUnits() override { return baseUnits; }
  RECT ScreenArea() override { return State().screen.area; }
  RECT WorkArea() override { return State().screen.workArea; }
  int CaptionHeight() override { return State().screen.captionHeight; }
  int FrameWidth() override { return State().screen.frameWidth; }

  bool CreateDialogWindow(const DialogView& dialog) override {
    State().dialogs[dialog.handle].view = dialog;
    for (const ControlView& control : dialog.controls) State().dialogOfControl[control.handle] = dialog.handle;
    return true;
  }

  void ShowDialogWindow(HWND) override {}

  void DestroyDialogWindow(HWND dialog) override {
    std::erase_if(State().dialogOfControl, [dialog](const auto& entry) { return entry.second == dialog; });
    State().dialogs.erase(dialog);
  }

  void RunModal(HWND dialog, const bool& ended) override {
    for (int calls = 0; !ended && calls < mostIdleCalls; ++calls) State().user->OnDialog(dialog);
    if (ended) return;
    State().user->OnStuck(dialog);
    EndDialog(dialog, IDCANCEL);
  }

  int RunMessageBox(const MessageBoxView& box) override { return State().user->OnMessageBox(box); }

  void SetText(HWND window, const std::string& text) override {
    const auto dialog = State().dialogs.find(window);
    if (dialog != State().dialogs.end()) dialog->second.view.title = text;
    if (ControlView* control = ViewOfControl(window)) control->text = text;
  }

  void SetCheck(HWND checkBox, int checkState) override { State().checkStates[checkBox] = checkState; }
  void SetEnabled(HWND window, bool enabled) override { State().enabled[window] = enabled; }

  void SetFocus(HWND control, bool selectAll) override { State().record.selectedWhole = selectAll ? control : nullptr; }

  void MoveDialogWindow(HWND dialog, POINT topLeft) override {
    State().dialogs[dialog].topLeft = topLeft;
    State().record.moves.push_back(topLeft);
  }

  RECT WindowRect(HWND dialog) override {
    const ShownDialog& shown = State().dialogs[dialog];
    const int frame = State().screen.frameWidth;
    return {shown.topLeft.x, shown.topLeft.y, shown.topLeft.x + shown.view.width + 2 * frame,
            shown.topLeft.y + shown.view.height + 2 * frame + State().screen.captionHeight};
  }

  POINT ClientOrigin(HWND dialog) override {
    const POINT topLeft = State().dialogs[dialog].topLeft;
    const int frame = State().screen.frameWidth;
    return {topLeft.x + frame, topLeft.y + frame + State().screen.captionHeight};
  }

  std::optional<RECT> ForeignRect(std::uintptr_t window) override {
    const auto found = State().screen.foreignWindows.find(window);
    if (found == State().screen.foreignWindows.end()) return std::nullopt;
    return found->second;
  }

  void ShowWaitCursor() override { ++State().record.waitCursorsShown; }
  void RestoreCursor() override { ++State().record.cursorsRestored; }
  std::optional<POINT> CursorPosition() override { return pointerPosition; }
};

HeadlessDisplay display;

}  // namespace

void UseHeadlessDisplay(HeadlessUser* user) {
  if (user != nullptr) currentState = std::make_unique<HeadlessState>();
  State().user = user;
  UseDisplay(user != nullptr ? &display : nullptr);
}

HeadlessScreen& Screen() {
  return State().screen;
}

const HeadlessRecord& Record() {
  return State().record;
}

void Click(HWND control) {
  CoreEvents().OnFocus(control);
  CoreEvents().OnClick(control);
}

void Type(HWND edit, const std::string& utf8Text) {
  CoreEvents().OnFocus(edit);
  if (ControlView* view = ViewOfControl(edit)) view->text = utf8Text;
  CoreEvents().OnTextEdited(edit, utf8Text);
}

void Press(HWND dialog, Key key) {
  const ControlView* focused = ViewOfControl(FocusedControl(dialog));
  const bool isButton = focused != nullptr && focused->kind != ControlKind::edit;
  switch (key) {
    case Key::enter:
      CoreEvents().OnEnter(dialog);
      break;
    case Key::escape:
      CoreEvents().OnEscape(dialog);
      break;
    case Key::tab:
      SendMessageA(dialog, WM_NEXTDLGCTL, 0, 0);
      break;
    case Key::space:
      if (isButton) CoreEvents().OnClick(focused->handle);
      break;
  }
}

void CloseBox(HWND dialog) {
  CoreEvents().OnCloseBox(dialog);
}

void Drag(HWND dialog, POINT by) {
  POINT& topLeft = State().dialogs[dialog].topLeft;
  topLeft = {topLeft.x + by.x, topLeft.y + by.y};
  CoreEvents().OnDragged(dialog);
}

void Wheel(HWND window, int delta) {
  CoreEvents().OnWheel(window, delta, pointerPosition);
}

HWND FocusedControl(HWND dialog) {
  const Window* window = FindDialog(dialog);
  return window != nullptr ? window->dialog->focus : nullptr;
}

const DialogView* ViewOf(HWND dialog) {
  const auto found = State().dialogs.find(dialog);
  return found != State().dialogs.end() ? &found->second.view : nullptr;
}

int CheckStateShown(HWND checkBox) {
  const auto found = State().checkStates.find(checkBox);
  return found != State().checkStates.end() ? found->second : 0;
}

bool IsEnabledOnDisplay(HWND window) {
  const auto found = State().enabled.find(window);
  return found == State().enabled.end() || found->second;
}

}  // namespace user
