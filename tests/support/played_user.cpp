#include "played_user.h"

#include <memory>
#include <optional>
#include <utility>

#include "platform/linux/windowing/dialog_manager.h"
#include "platform/linux/windowing/display_selection.h"
#include "platform/linux/windowing/window_tree.h"

namespace headless {
namespace {

using windowing::ControlKind;
using windowing::ControlView;
using windowing::CoreEvents;
using windowing::DialogView;
using windowing::MessageBoxView;

constexpr POINT baseUnits{7, 13};
constexpr POINT pointerPosition{100, 100};

struct ShownDialog {
  DialogView view;
  POINT topLeft{0, 0};
};

struct HeadlessState {
  PlayedUser* person = nullptr;
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

class HeadlessDisplay final : public windowing::Display {
 public:
  void SetLanguage(const std::string&) override {}
  POINT BaseUnits() override { return baseUnits; }
  RECT ScreenArea() override { return State().screen.area; }
  int ScreenOf(const RECT& place) override {
    const LONG right = State().screen.rightWorkArea.right;
    return right > 0 && place.left + place.right >= 2 * State().screen.area.right ? 1 : 0;
  }
  RECT WorkArea(int screen) override { return screen == 0 ? State().screen.workArea : State().screen.rightWorkArea; }
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
    std::deque<PlayedUser::Step>& steps = State().person->steps;
    while (!ended && !steps.empty()) {
      const PlayedUser::Step step = std::move(steps.front());
      steps.pop_front();
      step(dialog);
    }
    if (ended) return;
    ADD_FAILURE() << "a dialog was left open";
    EndDialog(dialog, IDCANCEL);
  }

  int RunMessageBox(const MessageBoxView& box) override {
    PlayedUser& person = *State().person;
    const DialogView* const owner = ViewOf(box.owner);
    person.boxes.push_back(box);
    person.boxOwners.push_back(owner != nullptr ? owner->title : "");
    if (person.answers.empty()) return IDOK;
    const int answer = person.answers.front();
    person.answers.pop_front();
    return answer;
  }

  void SetText(HWND window, const std::string& text) override {
    const auto dialog = State().dialogs.find(window);
    if (dialog != State().dialogs.end()) dialog->second.view.title = text;
    if (ControlView* control = ViewOfControl(window)) control->text = text;
  }

  void SetCheck(HWND checkBox, int checkState) override { State().checkStates[checkBox] = checkState; }
  void SetEnabled(HWND window, bool enabled) override { State().enabled[window] = enabled; }

  void SetFocus(HWND control, bool selectAll) override { State().record.selectedWhole = selectAll ? control : nullptr; }

  void MoveControl(HWND, const RECT&) override {}
  void MoveDialogWindow(HWND dialog, POINT topLeft) override { State().dialogs[dialog].topLeft = topLeft; }

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

  std::uintptr_t ForeignTopLevel(std::uintptr_t window) override { return ForeignRect(window) ? window : 0; }

  void ShowWaitCursor() override { ++State().record.waitCursorsShown; }
  void RestoreCursor() override { ++State().record.cursorsRestored; }
  std::optional<POINT> CursorPosition() override { return pointerPosition; }
};

HeadlessDisplay display;

}  // namespace

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
  const windowing::Window* window = windowing::FindDialog(dialog);
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

}  // namespace headless

// The display of a thread that has a user; else there is none, as where the library finds no plugin.
NvOpenDisplay windowing::FindDisplay(std::string& whyNot) {
  whyNot = "nobody plays the user";
  return [](DisplayEvents*, std::string&) -> Display* {
    return headless::State().person != nullptr ? &headless::display : nullptr;
  };
}

namespace {

HWND Control(HWND dialog, int id) {
  const HWND control = GetDlgItem(dialog, id);
  EXPECT_NE(control, nullptr) << "no control " << id;
  return control;
}

}  // namespace

PlayedUser::Step PlayedUser::Types(int id, std::string text) {
  return [id, text = std::move(text)](HWND dialog) { headless::Type(Control(dialog, id), text); };
}

PlayedUser::Step PlayedUser::Clicks(int id) {
  return [id](HWND dialog) { headless::Click(Control(dialog, id)); };
}

PlayedUser::PlayedUser() {
  headless::currentState = std::make_unique<headless::HeadlessState>();
  headless::State().person = this;
  std::string whyNot;
  windowing::OpenDisplay(whyNot);
}

PlayedUser::~PlayedUser() {
  headless::State().person = nullptr;
  windowing::CloseDisplay();
  EXPECT_TRUE(steps.empty()) << steps.size() << " steps were not played";
}
