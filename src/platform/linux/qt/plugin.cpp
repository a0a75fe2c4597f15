// The plugin's one export.
#include "application.h"
#include "qt_display.h"

extern "C" __attribute__((visibility("default"))) user::Display* nvsupport_open_display(user::DisplayEvents* events) {
  // Lives as long as the process, like the application that it shows its windows in.
  static user::QtDisplay* display = nullptr;
  if (events == nullptr) {
    if (display != nullptr) display->Use(nullptr);
    return nullptr;
  }
  if (!user::EnsureApplication()) return nullptr;
  if (display == nullptr) display = new user::QtDisplay();
  display->Use(events);
  return display;
}

static_assert(std::is_same_v<decltype(&nvsupport_open_display), NvOpenDisplay>);
