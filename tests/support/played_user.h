// A display without a screen, in the place of the library's own, and the user before it: during the life of a
// PlayedUser every dialog of its thread is played by prepared steps, one for each time that the dialog waits, and every
// message box is noted and answered. What the display recorded stays until the next user.
#ifndef NVSUPPORT_TESTS_SUPPORT_PLAYED_USER_H
#define NVSUPPORT_TESTS_SUPPORT_PLAYED_USER_H

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/linux/windowing/display.h"
#include "platform/platform.h"

namespace headless {

// What the screen looks like, free to set before a dialog opens; a new user finds it as here.
struct HeadlessScreen {
  RECT area{0, 0, 1280, 1024};
  RECT workArea{0, 0, 1280, 1024};
  RECT rightWorkArea{};  // of a second screen beside it, if there is one
  int frameWidth = 4;
  int captionHeight = 18;
  std::map<std::uintptr_t, RECT> foreignWindows;  // windows of the host's own, by id
};
HeadlessScreen& Screen();

// What the core made the display do since there is this user.
struct HeadlessRecord {
  HWND selectedWhole = nullptr;  // the control focused last, if it was selected whole
  std::atomic<int> waitCursorsShown = 0;
  std::atomic<int> cursorsRestored = 0;
};
const HeadlessRecord& Record();

// What the user does.
enum class Key { enter, escape, tab, space };
void Click(HWND control);                           // a push button or check box
void Type(HWND edit, const std::string& utf8Text);  // in place of the whole text
void Press(HWND dialog, Key key);
void CloseBox(HWND dialog);
void Drag(HWND dialog, POINT by);
void Wheel(HWND window, int delta);

// What the user sees: the control with the focus, or null; the dialog with its texts and states in force, or null if
// it is not on the display.
HWND FocusedControl(HWND dialog);
const windowing::DialogView* ViewOf(HWND dialog);
int CheckStateShown(HWND checkBox);
bool IsEnabledOnDisplay(HWND window);

}  // namespace headless

class PlayedUser {
 public:
  using Step = std::function<void(HWND dialog)>;

  // What a step mostly does: fill an edit, push a button or tick a box, by the control's id.
  static Step Types(int id, std::string text);
  static Step Clicks(int id);

  PlayedUser();
  PlayedUser(const PlayedUser&) = delete;
  PlayedUser& operator=(const PlayedUser&) = delete;
  ~PlayedUser();

  std::deque<Step> steps;                        // what the user will do
  std::deque<int> answers;                       // buttons for the next message boxes; OK when there are no more
  std::vector<windowing::MessageBoxView> boxes;  // what the user was told
  std::vector<std::string> boxOwners;            // by the same index: title of the dialog that owned the box
};

#endif
