// Whether Qt would find a screen. A QApplication that finds none ends the process, so this is asked first.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_USABLE_PLATFORM_H
#define NVSUPPORT_PLATFORM_LINUX_QT_USABLE_PLATFORM_H

#include <string>

namespace windowing {

// Empty if one of the platforms that Qt would try has its plugin on this machine and, where it needs one, a server that
// answers; else what is wrong with each of them, and what to do. Looks where Qt looks: QT_QPA_PLATFORM,
// WAYLAND_DISPLAY, DISPLAY.
std::string WhyNoPlatform();

}  // namespace windowing

#endif
