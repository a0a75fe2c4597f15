// The display is a plugin beside the module, loaded with the first window.
#include <string>

#include "../plugin.h"
#include "display_selection.h"

namespace windowing {

// The plugin itself sees to it that it is never unmapped, because its toolkit would crash.
NvOpenDisplay FindDisplay(std::string& whyNot) {
  platform::PluginHandle plugin;
  void* const open =
      platform::OpenPlugin("nvsupport-qt.so", "nvsupport_open_display", platform::TraceArea::display, plugin, whyNot);
  if (open == nullptr) {
    whyNot +=
        "; the plugin belongs beside the library and needs Qt 6 with Widgets (Debian: libqt6widgets6, "
        "qt6-qpa-plugins, libxcb-cursor0)";
  }
  return reinterpret_cast<NvOpenDisplay>(open);
}

}  // namespace windowing
