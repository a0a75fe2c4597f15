// The user before a display without a screen, which takes the place of the library's own: during the life of a
// PlayedUser every dialog of its thread is played by prepared steps, one for each time that the dialog waits, and every
// message box is noted and answered with OK.
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
#include <vector>

#include "platform/linux/windowing/display.h"
#include "platform/platform.h"

class PlayedUser final : public windowing::Display {
 public:
  using Step = std::function<void(HWND dialog)>;

  // What a step mostly does: fill an edit, push a button or tick a box, by the control's id.
  static Step Types(int id, std::string text);
  static Step Clicks(int id);

  PlayedUser();
  PlayedUser(const PlayedUser&) = delete;
  PlayedUser& operator=(const PlayedUser&) = delete;
  ~PlayedUser() override;

  std::deque<Step> steps;                        // what the user will do
  std::vector<windowing::MessageBoxView> boxes;  // what the user was told
  std::vector<std::string> boxOwners;            // by the same index: title of the dialog that owned the box
  void Drag(HWND dialog, POINT by);

  // What the user sees: the control with the focus, or null; the dialog with its texts in force, or null if it is not
  // on the display.
  static HWND FocusedControl(HWND dialog);
  static const windowing::DialogView* ViewOf(HWND dialog);

  // What the core made the display do. Boxes and windows stand here once that was said of them.
  std::map<HWND, int> checkStates;
  std::map<HWND, bool> enabled;
  HWND selectedWhole = nullptr;  // the control focused last, if it was selected whole
  std::atomic<int> waitCursorsShown = 0;
  std::atomic<int> cursorsRestored = 0;

  // What the screen looks like, free to set before a dialog opens.
  static constexpr RECT screenArea{0, 0, 1280, 1024};
  RECT workArea = screenArea;
  RECT rightWorkArea{};                           // of a second screen beside it, if there is one
  std::map<std::uintptr_t, RECT> foreignWindows;  // windows of the host's own, by id

 private:
  void SetLanguage(const std::string&) override {}
  POINT BaseUnits() override { return {7, 13}; }
  RECT ScreenArea() override { return screenArea; }
  int ScreenOf(const RECT& place) override;
  RECT WorkArea(int screen) override { return screen == 0 ? workArea : rightWorkArea; }
  int CaptionHeight() override { return 18; }
  int FrameWidth() override { return 4; }
  bool CreateDialogWindow(const windowing::DialogView& dialog) override;
  void ShowDialogWindow(HWND) override {}
  void DestroyDialogWindow(HWND dialog) override { dialogs.erase(dialog); }
  void RunModal(HWND dialog, const bool& ended) override;
  int RunMessageBox(const windowing::MessageBoxView& box) override;
  void SetText(HWND window, const std::string& text) override;
  void SetCheck(HWND checkBox, int state) override { checkStates[checkBox] = state; }
  void SetEnabled(HWND window, bool enable) override { enabled[window] = enable; }
  void SetFocus(HWND control, bool selectAll) override { selectedWhole = selectAll ? control : nullptr; }
  void MoveControl(HWND, const RECT&) override {}
  void MoveDialogWindow(HWND dialog, POINT topLeft) override { places[dialog] = topLeft; }
  RECT WindowRect(HWND dialog) override;
  POINT ClientOrigin(HWND dialog) override;
  std::optional<RECT> ForeignRect(std::uintptr_t window) override;
  std::uintptr_t ForeignTopLevel(std::uintptr_t window) override { return ForeignRect(window) ? window : 0; }
  void ShowWaitCursor() override { ++waitCursorsShown; }
  void RestoreCursor() override { ++cursorsRestored; }
  std::optional<POINT> CursorPosition() override { return POINT{}; }

  std::map<HWND, windowing::DialogView> dialogs;
  std::map<HWND, POINT> places;  // top left corners of dialogs
};

#endif
