// Window styles, notification codes and messages that pass inside the user core only; published values.
#ifndef NVSUPPORT_PLATFORM_LINUX_USER_STYLES_H
#define NVSUPPORT_PLATFORM_LINUX_USER_STYLES_H

#include "user.h"

namespace user {

inline constexpr LONG_PTR kStylePopup = 0x80000000;
inline constexpr LONG_PTR kStyleDisabled = 0x08000000;
inline constexpr LONG_PTR kStyleTabStop = 0x00010000;
inline constexpr LONG_PTR kStyleSetFont = 0x40;      // of a dialog: the template names a font
inline constexpr LONG_PTR kStyleControlType = 0x0F;  // of a button or static: which kind
inline constexpr LONG_PTR kStylePassword = 0x20;     // of an edit

// Kinds of buttons.
inline constexpr LONG_PTR kPushButton = 0;
inline constexpr LONG_PTR kDefaultPushButton = 1;
inline constexpr LONG_PTR kCheckBox = 2;
inline constexpr LONG_PTR kAutoCheckBox = 3;
inline constexpr LONG_PTR kThreeState = 5;
inline constexpr LONG_PTR kAutoThreeState = 6;
// Kinds of statics.
inline constexpr LONG_PTR kLabelLeft = 0;
inline constexpr LONG_PTR kLabelRight = 2;

inline constexpr WORD kButtonClicked = 0;
inline constexpr WORD kEditSetFocus = 0x100;
inline constexpr WORD kEditKillFocus = 0x200;
inline constexpr WORD kEditChange = 0x300;
inline constexpr WORD kEditUpdate = 0x400;

// Two words as one parameter of a message.
constexpr std::uint32_t PackWords(WORD low, WORD high) {
  return low | static_cast<std::uint32_t>(high) << 16;
}

}  // namespace user

#endif
