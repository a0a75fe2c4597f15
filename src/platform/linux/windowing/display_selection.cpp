#include "display_selection.h"

#include <unistd.h>

#include <atomic>

#include "../threads.h"
#include "../trace.h"
#include "base/process_wide.h"
#include "dialog_manager.h"
#include "platform/platform.h"

namespace windowing {
namespace {

// Atomic, because the thread that shows the wait cursor reads it, too.
std::atomic<DWORD> displayThread = 0;
std::atomic<Display*> openedDisplay = nullptr;
NvOpenDisplay openDisplay = nullptr;  // of the display that is open

// In a function, because it is set while the module loads, maybe before this file's variables are initialised.
std::string& Language() {
  static base::ProcessWide<std::string> language;
  return *language;
}

void SetDisplay(Display* display) {
  displayThread = GetCurrentThreadId();
  openedDisplay = display;
}

Display* OpenFoundDisplay(std::string& whyNot) {
  const NvOpenDisplay open = FindDisplay(whyNot);
  Display* display = open != nullptr ? open(&CoreEvents(), whyNot) : nullptr;
  platform::Trace(platform::TraceArea::display, "%s", display != nullptr ? "opened" : whyNot.c_str());
  if (display != nullptr) openDisplay = open;
  return display;
}

}  // namespace

Display* OpenDisplay(std::string& whyNot) {
  whyNot = "another thread has it; dialogs are for the thread that showed the first";
  if (openedDisplay == nullptr) {
    SetDisplay(OpenFoundDisplay(whyNot));
  } else if (OpenedDisplay() != nullptr) {
    // Asked each time: the display may need something of the host's that has gone meanwhile.
    openedDisplay = openDisplay(&CoreEvents(), whyNot);
  }
  Display* display = OpenedDisplay();
  if (display != nullptr) display->SetLanguage(Language());
  return display;
}

Display* OpenedDisplay() {
  Display* display = openedDisplay;
  return displayThread == GetCurrentThreadId() ? display : nullptr;
}

bool IsUserInterfaceThread(DWORD thread) {
  const DWORD known = displayThread;
  return thread == (known != 0 ? known : static_cast<DWORD>(getpid()));
}

void CloseDisplay() {
  openedDisplay = nullptr;
  std::string whyNot;
  if (openDisplay != nullptr) openDisplay(nullptr, whyNot);
  openDisplay = nullptr;
}

}  // namespace windowing

void platform::SetDisplayLanguage(const std::string& name) {
  windowing::Language() = name;
}
