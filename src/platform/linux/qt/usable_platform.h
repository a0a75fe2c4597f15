// Tells whether Qt would find a screen. A QApplication that finds none aborts the process, so this is asked first.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_USABLE_PLATFORM_H
#define NVSUPPORT_PLATFORM_LINUX_QT_USABLE_PLATFORM_H

#include <string>

namespace windowing {

// Empty if one of the platforms that Qt would try can be used: its plugin is installed, and the server that it needs
// answers. Otherwise the text says what is wrong with each platform, and what to do. Looks at the same variables as Qt:
// QT_QPA_PLATFORM, WAYLAND_DISPLAY, DISPLAY.
std::string WhyNoPlatform();

}  // namespace windowing

#endif
