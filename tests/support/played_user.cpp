#include "played_user.h"

#include <utility>

#include "platform/linux/windowing/dialog_manager.h"
#include "platform/linux/windowing/display_selection.h"
#include "platform/linux/windowing/window_tree.h"

namespace {

PlayedUser* present = nullptr;

HWND Control(HWND dialog, int id) {
  const HWND control = GetDlgItem(dialog, id);
  EXPECT_NE(control, nullptr) << "no control " << id;
  windowing::CoreEvents().OnFocus(control);
  return control;
}

}  // namespace

// The display of a thread that has a user; else there is none, as where the library finds no plugin.
NvOpenDisplay windowing::FindDisplay(std::string& whyNot) {
  whyNot = "nobody plays the user";
  return [](DisplayEvents*, std::string&) -> Display* { return present; };
}

PlayedUser::Step PlayedUser::Types(int id, std::string text) {
  return [id, text = std::move(text)](HWND dialog) { windowing::CoreEvents().OnTextEdited(Control(dialog, id), text); };
}

PlayedUser::Step PlayedUser::Clicks(int id) {
  return [id](HWND dialog) { windowing::CoreEvents().OnClick(Control(dialog, id)); };
}

PlayedUser::PlayedUser() {
  present = this;
  std::string whyNot;
  windowing::OpenDisplay(whyNot);
}

PlayedUser::~PlayedUser() {
  present = nullptr;
  windowing::CloseDisplay();
  EXPECT_TRUE(steps.empty()) << steps.size() << " steps were not played";
}

void PlayedUser::Drag(HWND dialog, POINT by) {
  places[dialog].x += by.x;
  places[dialog].y += by.y;
  windowing::CoreEvents().OnDragged(dialog);
}

HWND PlayedUser::FocusedControl(HWND dialog) {
  const windowing::Window* window = windowing::FindDialog(dialog);
  return window != nullptr ? window->dialog->focus : nullptr;
}

const windowing::DialogView* PlayedUser::ViewOf(HWND dialog) {
  const auto found = present->dialogs.find(dialog);
  return found != present->dialogs.end() ? &found->second : nullptr;
}

int PlayedUser::ScreenOf(const RECT& place) {
  return rightWorkArea.right > 0 && place.left + place.right >= 2 * screenArea.right ? 1 : 0;
}

bool PlayedUser::CreateDialogWindow(const windowing::DialogView& dialog) {
  dialogs[dialog.handle] = dialog;
  return true;
}

void PlayedUser::RunModal(HWND dialog, const bool& ended) {
  while (!ended && !steps.empty()) {
    const Step step = std::move(steps.front());
    steps.pop_front();
    step(dialog);
  }
  if (ended) return;
  ADD_FAILURE() << "a dialog was left open";
  EndDialog(dialog, IDCANCEL);
}

int PlayedUser::RunMessageBox(const windowing::MessageBoxView& box) {
  const windowing::DialogView* const owner = ViewOf(box.owner);
  boxes.push_back(box);
  boxOwners.push_back(owner != nullptr ? owner->title : "");
  return IDOK;
}

void PlayedUser::SetText(HWND window, const std::string& text) {
  for (auto& [handle, view] : dialogs) {
    if (handle == window) view.title = text;
    for (windowing::ControlView& control : view.controls) {
      if (control.handle == window) control.text = text;
    }
  }
}

RECT PlayedUser::WindowRect(HWND dialog) {
  const POINT topLeft = places[dialog];
  return {topLeft.x, topLeft.y, topLeft.x + dialogs[dialog].width + 2 * FrameWidth(),
          topLeft.y + dialogs[dialog].height + 2 * FrameWidth() + CaptionHeight()};
}

POINT PlayedUser::ClientOrigin(HWND dialog) {
  const POINT topLeft = places[dialog];
  return {topLeft.x + FrameWidth(), topLeft.y + FrameWidth() + CaptionHeight()};
}

std::optional<RECT> PlayedUser::ForeignRect(std::uintptr_t window) {
  const auto found = foreignWindows.find(window);
  if (found == foreignWindows.end()) return std::nullopt;
  return found->second;
}
