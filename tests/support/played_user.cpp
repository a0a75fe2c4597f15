#include "played_user.h"

// The display of a thread that has a user; else there is none, as where the library finds no plugin.
NvOpenDisplay windowing::FindDisplay(std::string& whyNot) {
  whyNot = "nobody plays the user";
  return [](DisplayEvents*, std::string&) -> Display* { return PlayedUser::Present(); };
}
