// Message boxes. Without a display their text goes to standard error, so that it is not lost.
#include <cstdio>

#include "../multibyte.h"
#include "display_selection.h"
#include "focus.h"
#include "owner.h"
#include "user.h"
#include "window_tree.h"

namespace user {
namespace {

constexpr const char* defaultCaption = "Error";

int ShowBox(MessageBoxView& box, HWND ownerWindow) {
  Display* display = OpenDisplay();
  if (display == nullptr) return 0;
  const HWND owner = OwnerFor(*display, ownerWindow);
  box.owner = DialogOf(owner);
  box.foreignOwner = ForeignId(owner);
  const HWND focusBefore = FocusedControlOfProcess();
  DisabledOwner disabled(*display, owner);
  GiveFocus(nullptr);
  const int answer = display->RunMessageBox(box);
  disabled.Enable();
  if (IsWindow(focusBefore)) GiveFocus(focusBefore);
  return answer;
}

}  // namespace
}  // namespace user

int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type) {
  user::MessageBoxView box{};
  box.text = platform::ToUtf8(text != nullptr ? text : "");
  box.caption = platform::ToUtf8(caption != nullptr ? caption : user::defaultCaption);
  box.type = type;
  const int answer = user::ShowBox(box, owner);
  if (answer == 0) std::fprintf(stderr, "%s: %s\n", box.caption.c_str(), box.text.c_str());
  return answer;
}
