// Whether Qt would find a screen. A QApplication that finds none ends the process, so this is asked first.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_USABLE_PLATFORM_H
#define NVSUPPORT_PLATFORM_LINUX_QT_USABLE_PLATFORM_H

namespace windowing {

// True if one of the platforms that Qt would try has its plugin on this machine and, where it needs one, a server
// that answers. Looks where Qt looks: QT_QPA_PLATFORM, WAYLAND_DISPLAY, DISPLAY.
bool HasUsablePlatform();

}  // namespace windowing

#endif
