// Window styles, notification codes and messages that pass inside the user core only; published values.
#ifndef NVSUPPORT_PLATFORM_LINUX_USER_STYLES_H
#define NVSUPPORT_PLATFORM_LINUX_USER_STYLES_H

#include "user.h"

namespace user {

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

}  // namespace user

#endif
