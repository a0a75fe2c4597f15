#include "played_user.h"

#include "platform/linux/windowing/wait_cursor.h"

// The display of a thread that has a played user. Other threads have none, as if the library found no plugin.
NvOpenDisplay windowing::FindDisplay(std::string& whyNot) {
  whyNot = "nobody plays the user";
  return [](DisplayEvents*, std::string&) -> Display* { return PlayedUser::Present(); };
}

bool windowing::MayHaveWindows() {
  return PlayedUser::Present() != nullptr;
}

void windowing::ShowWaitCursor() {
  ++PlayedUser::Present()->waitCursors;
}

void windowing::HideWaitCursor() {
  if (PlayedUser::Present() != nullptr) PlayedUser::Present()->waitCursors = 0;
}

std::optional<POINT> windowing::WaitCursorPosition() {
  return std::nullopt;
}
