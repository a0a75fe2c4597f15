#include "display_selection.h"

#include <dlfcn.h>

#include <atomic>
#include <string>

#include "../module.h"
#include "../threads.h"
#include "display_events.h"

namespace user {
namespace {

constexpr const char* pluginName = "nvsupport-qt.so";
constexpr const char* openFunctionName = "nvsupport_open_display";
constexpr DWORD longestPath = 4096;

// Atomic, because the thread that shows the wait cursor asks for the display of another.
std::atomic<DWORD> displayThread = 0;
std::atomic<Display*> openedDisplay = nullptr;
NvOpenDisplay openPlugin = nullptr;  // once the plugin's display is open

void SetDisplay(Display* display) {
  displayThread = GetCurrentThreadId();
  openedDisplay = display;
}

std::string PluginPath() {
  char path[longestPath];
  if (GetModuleFileNameA(GetModuleHandleA(nullptr), path, sizeof path) == 0) return {};
  const std::string module = path;
  const std::size_t folderEnd = module.rfind('/');
  return folderEnd != std::string::npos ? module.substr(0, folderEnd + 1) + pluginName : std::string();
}

// Never unmapped, because toolkits do not bear that.
Display* OpenPlugin() {
  const std::string path = PluginPath();
  void* plugin = path.empty() ? nullptr : dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (plugin == nullptr) return nullptr;
  const auto open = reinterpret_cast<NvOpenDisplay>(dlsym(plugin, openFunctionName));
  Display* display = open != nullptr ? open(&CoreEvents()) : nullptr;
  if (display != nullptr) openPlugin = open;
  dlclose(plugin);
  return display;
}

}  // namespace

Display* OpenDisplay() {
  if (openedDisplay == nullptr) {
    SetDisplay(OpenPlugin());
  } else if (openPlugin != nullptr && OpenedDisplay() != nullptr) {
    // Asked each time: what the display stands on may be the host's, and may have gone.
    openedDisplay = openPlugin(&CoreEvents());
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

void UseDisplay(Display* display) {
  CloseDisplay();
  SetDisplay(display);
}

void CloseDisplay() {
  openedDisplay = nullptr;
  if (openPlugin != nullptr) openPlugin(nullptr);
  openPlugin = nullptr;
}

}  // namespace user
