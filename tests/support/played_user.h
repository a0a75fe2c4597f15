// A played user and a display without a screen, which replaces the library's own. While a PlayedUser lives, it answers
// every dialog of its thread with prepared steps, one each time that the dialog waits for the user. Message boxes are
// noted and answered with OK.
#ifndef NVSUPPORT_TESTS_SUPPORT_PLAYED_USER_H
#define NVSUPPORT_TESTS_SUPPORT_PLAYED_USER_H

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/windowing/dialog_manager.h"
#include "platform/linux/windowing/display_selection.h"
#include "platform/platform.h"

class PlayedUser final : public windowing::Display {
 public:
  using Step = std::function<void(HWND dialog)>;

  // The usual steps: fill an edit, push a button or tick a box, by the control's id.
  static Step Types(int id, const std::string& text) {
    return [=](HWND dialog) { windowing::CoreEvents().OnTextEdited(Focused(dialog, id), text); };
  }
  static Step Clicks(int id) {
    return [=](HWND dialog) { windowing::CoreEvents().OnClick(Focused(dialog, id)); };
  }

  PlayedUser() {
    present = this;
    std::string whyNot;
    windowing::OpenDisplay(whyNot);
  }
  PlayedUser(const PlayedUser&) = delete;
  PlayedUser& operator=(const PlayedUser&) = delete;
  ~PlayedUser() override {
    present = nullptr;
    windowing::CloseDisplay();
    EXPECT_TRUE(steps.empty()) << steps.size() << " steps were not played";
  }

  static PlayedUser* Present() { return present; }

  std::deque<Step> steps;                        // what the user will do
  std::vector<windowing::MessageBoxView> boxes;  // what the user was told
  std::vector<std::string> boxOwners;            // of each box: the title of the dialog that owned it
  void Drag(HWND dialog, POINT by) {
    places[dialog].x += by.x;
    places[dialog].y += by.y;
    windowing::CoreEvents().OnDragged(dialog);
  }

  // The dialog with its texts in force, or null if it is not on the display.
  static const windowing::DialogView* ViewOf(HWND dialog) {
    const auto found = present->dialogs.find(dialog);
    return found != present->dialogs.end() ? &found->second : nullptr;
  }

  // What the core told the display. A window is listed here once the core has told it.
  std::map<HWND, bool> enabled;
  HWND selectedWhole = nullptr;      // the control focused last, if it was selected whole
  std::string language;              // of what the display says by itself
  std::atomic<int> waitCursors = 0;  // that show now
  int waits = 0;                     // of the thread, that go on

  // What the screen looks like, free to set before a dialog opens.
  static constexpr RECT screenArea{0, 0, 1280, 1024};
  RECT workArea = screenArea;
  std::map<std::uintptr_t, RECT> foreignWindows;  // windows of the host's own, by id

 private:
  static HWND Focused(HWND dialog, int id) {
    const HWND control = GetDlgItem(dialog, id);
    EXPECT_NE(control, nullptr) << "no control " << id;
    windowing::CoreEvents().OnFocus(control);
    return control;
  }

  void SetLanguage(const std::string& name) override { language = name; }
  POINT BaseUnits() override { return {7, 13}; }
  RECT ScreenArea() override { return screenArea; }
  int ScreenOf(const RECT&) override { return 0; }
  RECT WorkArea(int) override { return workArea; }
  int CaptionHeight() override { return 18; }
  int FrameWidth() override { return 4; }
  bool CreateDialogWindow(const windowing::DialogView& dialog) override {
    dialogs[dialog.handle] = dialog;
    return true;
  }
  void ShowDialogWindow(HWND) override {}
  void DestroyDialogWindow(HWND dialog) override {
    const auto gone = dialogs.extract(dialog);
    if (gone.empty() || IsWindow(dialog)) return;  // there was no memory for all of it
    for (const windowing::ControlView& control : gone.mapped().controls) EXPECT_FALSE(IsWindow(control.handle));
  }
  void RunModal(HWND dialog, const bool& ended) override {
    while (!ended && !steps.empty()) {
      const Step step = std::move(steps.front());
      steps.pop_front();
      step(dialog);
    }
    if (ended) return;
    ADD_FAILURE() << "a dialog was left open";
    EndDialog(dialog, IDCANCEL);
  }
  int RunMessageBox(const windowing::MessageBoxView& box) override {
    const windowing::DialogView* const owner = ViewOf(box.owner);
    boxes.push_back(box);
    boxOwners.push_back(owner != nullptr ? owner->title : "");
    return IDOK;
  }
  void SetText(HWND window, const std::string& text) override {
    for (auto& [handle, view] : dialogs) {
      if (handle == window) view.title = text;
      for (windowing::ControlView& control : view.controls) {
        if (control.handle == window) control.text = text;
      }
    }
  }
  void SetCheck(HWND, int) override {}
  void SetEnabled(HWND window, bool enable) override { enabled[window] = enable; }
  void SetFocus(HWND control, bool selectAll) override { selectedWhole = selectAll ? control : nullptr; }
  void MoveControl(HWND, const RECT&) override {}
  void MoveDialogWindow(HWND dialog, POINT topLeft) override { places[dialog] = topLeft; }
  RECT WindowRect(HWND dialog) override {
    const auto [left, top] = places[dialog];
    const windowing::DialogView& view = dialogs[dialog];
    return {left, top, left + view.width + 2 * FrameWidth(), top + view.height + 2 * FrameWidth() + CaptionHeight()};
  }
  POINT ClientOrigin(HWND dialog) override {
    return {places[dialog].x + FrameWidth(), places[dialog].y + FrameWidth() + CaptionHeight()};
  }
  std::optional<RECT> ForeignRect(std::uintptr_t window) override {
    const auto found = foreignWindows.find(window);
    return found != foreignWindows.end() ? std::optional(found->second) : std::nullopt;
  }
  std::uintptr_t ForeignTopLevel(std::uintptr_t window) override { return ForeignRect(window) ? window : 0; }
  void ShowWaiting(bool waiting) override { waits += waiting ? 1 : -1; }

  static inline PlayedUser* present = nullptr;
  std::map<HWND, windowing::DialogView> dialogs;
  std::map<HWND, POINT> places;  // top left corners of dialogs
};

#endif
