// The seam between the window core and what shows its windows. The core holds all state and rules (texts, styles,
// focus, default button, messages); a display only shows that state and reports what the user does. Texts are UTF-8
// here, rectangles are in pixels. All calls come on the thread that runs the dialogs.
#ifndef NVSUPPORT_PLATFORM_LINUX_WINDOWING_DISPLAY_H
#define NVSUPPORT_PLATFORM_LINUX_WINDOWING_DISPLAY_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "../types.h"

namespace windowing {

enum class ControlKind { label, edit, pushButton, checkBox };

struct ControlView {
  HWND handle;
  ControlKind kind;
  int id;            // as in the template; 0xFFFF for a label without one
  RECT rectangle;    // relative to the dialog's client area
  std::string text;  // with '&' marks
  bool alignRight;
  bool password;
  bool defaultButton;
  bool threeState;
  bool tabStop;
};

struct DialogView {
  HWND handle;
  HWND owner;                   // a dialog of this display, or null
  std::uintptr_t foreignOwner;  // X11 window id of the host's window that owns the dialog, or 0
  std::string title;
  LONG width;  // of the client area
  LONG height;
  std::vector<ControlView> controls;  // in template order, which is the tab order
};

struct MessageBoxView {
  HWND owner;
  std::uintptr_t foreignOwner;
  std::string text;
  std::string caption;
  UINT type;  // MB_ values
};

// What the user did, as a display reports it to the core.
class DisplayEvents {
 public:
  virtual void OnClick(HWND control) = 0;  // push button or check box: mouse, Space or mnemonic
  virtual void OnTextEdited(HWND edit, const std::string& text) = 0;
  virtual void OnFocus(HWND control) = 0;
  virtual void OnEnter(HWND dialog) = 0;
  virtual void OnEscape(HWND dialog) = 0;
  virtual void OnCloseBox(HWND dialog) = 0;
  virtual void OnDragged(HWND dialog) = 0;  // the user moved the dialog; WindowRect tells where to
  virtual void OnWheel(HWND window, int delta, POINT screenPoint) = 0;
  virtual void OnLeftButton(HWND window, bool doubleClick, POINT clientPoint) = 0;

 protected:
  ~DisplayEvents() = default;
};

class Display {
 public:
  virtual ~Display() = default;

  // The language of the display's own texts, named in that language, such as "Deutsch".
  virtual void SetLanguage(const std::string& name) = 0;

  // Average width and height of a character of the dialog font: 4 dialog units across, 8 down.
  virtual POINT BaseUnits() = 0;
  virtual RECT ScreenArea() = 0;  // of the primary screen
  // The screen that holds most of a rectangle, else the nearest, by number; and its area without panels and docks.
  virtual int ScreenOf(const RECT& place) = 0;
  virtual RECT WorkArea(int screen) = 0;
  virtual int CaptionHeight() = 0;  // SM_CYSIZE
  virtual int FrameWidth() = 0;     // SM_CXFRAME and SM_CYFRAME

  // Makes the dialog's window with all its controls, not yet shown. False if that is not possible.
  virtual bool CreateDialogWindow(const DialogView& dialog) = 0;
  virtual void ShowDialogWindow(HWND dialog) = 0;
  // Comes after RunModal; or during it, when a handler for an event of this or another dialog destroys the dialog.
  virtual void DestroyDialogWindow(HWND dialog) = 0;
  // Runs the user's events until `ended` becomes true. Returns without that when the host quits its event loops.
  virtual void RunModal(HWND dialog, const bool& ended) = 0;
  // Shows a message box until it is answered; returns the id of the button, 0 if it could not be shown.
  virtual int RunMessageBox(const MessageBoxView& box) = 0;

  virtual void SetText(HWND window, const std::string& text) = 0;
  virtual void SetCheck(HWND checkBox, int state) = 0;
  virtual void SetEnabled(HWND window, bool enabled) = 0;
  // Also called before the dialog is shown. Need not be reported by OnFocus: the core knows.
  virtual void SetFocus(HWND control, bool selectAll) = 0;
  virtual void MoveControl(HWND control, const RECT& rectangle) = 0;  // in its dialog's client area
  // The frame's top left corner on the screen.
  virtual void MoveDialogWindow(HWND dialog, POINT topLeft) = 0;
  // The rectangle with its frame on the screen, and the screen position of the client area.
  virtual RECT WindowRect(HWND dialog) = 0;
  virtual POINT ClientOrigin(HWND dialog) = 0;
  // The rectangle of a host's own window; nothing if there is no such window.
  virtual std::optional<RECT> ForeignRect(std::uintptr_t window) = 0;
  // The top-level window that a host's own window is or lies in; 0 if there is no such window.
  virtual std::uintptr_t ForeignTopLevel(std::uintptr_t window) = 0;

  // Called before the thread is blocked, and after it: shows that the dialogs wait, or no longer do.
  virtual void ShowWaiting(bool waiting) = 0;
};

}  // namespace windowing

// The one function that a display plugin exports. Returns its display, which reports to `events` from now on, or null
// if it cannot be used; `whyNot` then says why, and what to do. The plugin keeps the display, also when the module is
// unloaded and loaded again. Null for `events` ends the use of the display before the module is unloaded; at the end of
// a process that comes when the plugin's own objects are gone already.
extern "C" using NvOpenDisplay = windowing::Display * (*)(windowing::DisplayEvents * events, std::string& whyNot);

#endif
