// All windows that the core made: dialogs and their controls, found by handle. Handles count up and are never used
// again, so a stale one finds nothing. They lie above every X11 window id, so the two cannot be mixed up. A pointer to
// a Window is valid until the next call of a window procedure, which may destroy it: look the handle up again then.
#ifndef NVSUPPORT_PLATFORM_LINUX_WINDOWING_WINDOW_TREE_H
#define NVSUPPORT_PLATFORM_LINUX_WINDOWING_WINDOW_TREE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "display.h"
#include "platform/secret.h"
#include "windowing.h"

namespace windowing {

// Styles, notification codes and messages that only the core uses, with their published values.
inline constexpr LONG_PTR stylePopup = 0x80000000;
inline constexpr LONG_PTR styleDisabled = 0x08000000;
inline constexpr LONG_PTR styleTabStop = 0x00010000;
inline constexpr LONG_PTR styleSetFont = 0x40;      // of a dialog: the template names a font
inline constexpr LONG_PTR styleControlType = 0x0F;  // of a button or static: which kind
inline constexpr LONG_PTR stylePassword = 0x20;     // of an edit

// Kinds of buttons.
inline constexpr LONG_PTR stylePushButton = 0;
inline constexpr LONG_PTR styleDefaultPushButton = 1;
inline constexpr LONG_PTR styleCheckBox = 2;
inline constexpr LONG_PTR styleAutoCheckBox = 3;
inline constexpr LONG_PTR styleThreeState = 5;
inline constexpr LONG_PTR styleAutoThreeState = 6;
// A kind of static.
inline constexpr LONG_PTR styleLabelRight = 2;

inline constexpr WORD codeButtonClicked = 0;
inline constexpr WORD codeEditSetFocus = 0x100;
inline constexpr WORD codeEditKillFocus = 0x200;
inline constexpr WORD codeEditChange = 0x300;
inline constexpr WORD codeEditUpdate = 0x400;

// Two words as one parameter of a message.
constexpr std::uint32_t PackWords(WORD low, WORD high) {
  return low | static_cast<std::uint32_t>(high) << 16;
}

class ModalRun;

struct DialogState {
  DLGPROC procedure;
  HWND owner;  // a dialog, a window of the host's own, or null
  ModalRun* run;
  std::vector<HWND> controls;  // in template order
  HWND focus = nullptr;        // the control that has the focus while the dialog is active
};

struct Window {
  HWND handle = nullptr;
  HWND parent = nullptr;  // a control's dialog
  int id = 0;
  LONG_PTR style = 0;
  RECT rectangle{};           // of a control: pixels in its dialog's client area
  platform::SecretText text;  // in the code page; may be a password
  WNDPROC procedure = nullptr;
  LONG_PTR userData = 0;
  bool enabled = true;
  bool destroying = false;
  ControlKind kind = ControlKind::label;  // of a control
  int checkState = 0;                     // of a check box: 0, 1, 2 for indeterminate
  std::optional<DialogState> dialog;      // of a dialog
};

Window& NewWindow();
void RemoveWindow(HWND handle);

// Null if the handle is no window of the core's, or of one that is gone.
Window* Find(HWND handle);
Window* FindDialog(HWND handle);
Window* FindControl(HWND handle, ControlKind kind);
// The dialog that a control belongs to; a dialog itself; null for anything else.
HWND DialogOf(HWND handle);
// A dialog that this window owns and that is not about to go; null if there is none.
HWND OwnedDialog(HWND owner);

// The X11 window id in a handle that the core did not make; 0 if the handle cannot be one.
std::uintptr_t ForeignId(HWND handle);

}  // namespace windowing

#endif
