// A display without a screen, on which a program plays the user: for tests, in the process that shows the dialogs.
// Between UseHeadlessDisplay(user) and UseHeadlessDisplay(nullptr) every dialog and message box of that thread is
// played; what the display recorded stays until the next user. `user` is not owned.
#ifndef NVSUPPORT_PLATFORM_LINUX_USER_HEADLESS_DISPLAY_H
#define NVSUPPORT_PLATFORM_LINUX_USER_HEADLESS_DISPLAY_H

#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "display.h"

namespace user {

class HeadlessUser {
 public:
  // Called by the modal loop whenever it is idle: plays the next actions.
  virtual void OnDialog(HWND dialog) = 0;
  // The id of the button that answers the box.
  virtual int OnMessageBox(const MessageBoxView& box) = 0;
  // The dialog did not end in 1,000 calls of OnDialog and is being closed.
  virtual void OnStuck(HWND dialog) = 0;

 protected:
  ~HeadlessUser() = default;
};

// What the screen looks like, free to set before a dialog opens; a new user finds it as here.
struct HeadlessScreen {
  RECT area{0, 0, 1280, 1024};
  RECT workArea{0, 0, 1280, 1024};
  int frameWidth = 4;
  int captionHeight = 18;
  std::map<std::uintptr_t, RECT> foreignWindows;  // windows of the host's own, by id
};

// What the core made the display do since UseHeadlessDisplay.
struct HeadlessRecord {
  std::vector<POINT> moves;      // places given to dialogs by the program, not by the user
  HWND selectedWhole = nullptr;  // the control focused last, if it was selected whole
  std::atomic<int> waitCursorsShown = 0;
  std::atomic<int> cursorsRestored = 0;
};

enum class Key { enter, escape, tab, space };

void UseHeadlessDisplay(HeadlessUser* user);
HeadlessScreen& Screen();
const HeadlessRecord& Record();

// What the user does.
void Click(HWND control);                           // a push button or check box
void Type(HWND edit, const std::string& utf8Text);  // in place of the whole text
void Press(HWND dialog, Key key);
void CloseBox(HWND dialog);
void Drag(HWND dialog, POINT by);
void Wheel(HWND window, int delta);

// What the user sees: the control with the focus, or null; the dialog with its texts and states in force, or null if
// it is not on the display.
HWND FocusedControl(HWND dialog);
const DialogView* ViewOf(HWND dialog);
int CheckStateShown(HWND checkBox);
bool IsEnabledOnDisplay(HWND window);

}  // namespace user

#endif
