// The plugin's one export.
#include "application.h"
#include "qt_display.h"

extern "C" __attribute__((visibility("default"))) windowing::Display* nvsupport_open_display(
    windowing::DisplayEvents* events, std::string& whyNot) {
  // Never deleted, like the QApplication that it needs.
  static windowing::QtDisplay* display = nullptr;
  if (events == nullptr) {
    if (display != nullptr) display->Use(nullptr);
    return nullptr;
  }
  if (!windowing::EnsureApplication(whyNot)) return nullptr;
  if (display == nullptr) display = new windowing::QtDisplay();
  display->Use(events);
  return display;
}

static_assert(std::is_same_v<decltype(&nvsupport_open_display), NvOpenDisplay>);
