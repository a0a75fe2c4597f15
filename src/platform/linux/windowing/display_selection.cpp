#include "display_selection.h"

#include <atomic>

#include "../threads.h"
#include "../trace.h"
#include "dialog_manager.h"

namespace windowing {
namespace {

// Atomic, because the thread that shows the wait cursor asks for the display of another.
std::atomic<DWORD> displayThread = 0;
std::atomic<Display*> openedDisplay = nullptr;
NvOpenDisplay openDisplay = nullptr;  // of the display that is open

void SetDisplay(Display* display) {
  displayThread = GetCurrentThreadId();
  openedDisplay = display;
}

Display* OpenFoundDisplay() {
  const NvOpenDisplay open = FindDisplay();
  Display* display = open != nullptr ? open(&CoreEvents()) : nullptr;
  platform::Trace(platform::TraceArea::display, display != nullptr ? "opened" : "no usable display");
  if (display != nullptr) openDisplay = open;
  return display;
}

}  // namespace

Display* OpenDisplay() {
  if (openedDisplay == nullptr) {
    SetDisplay(OpenFoundDisplay());
  } else if (OpenedDisplay() != nullptr) {
    // Asked each time: what the display stands on may be the host's, and may have gone.
    openedDisplay = openDisplay(&CoreEvents());
  }
  return OpenedDisplay();
}

Display* OpenedDisplay() {
  return DisplayOfThread(GetCurrentThreadId());
}

Display* DisplayOfThread(DWORD thread) {
  Display* display = openedDisplay;
  return displayThread == thread ? display : nullptr;
}

void CloseDisplay() {
  openedDisplay = nullptr;
  if (openDisplay != nullptr) openDisplay(nullptr);
  openDisplay = nullptr;
}

}  // namespace windowing
