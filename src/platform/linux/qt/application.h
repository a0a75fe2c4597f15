// The QApplication that the display lives in: the host's own, or one made for a host without.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_APPLICATION_H
#define NVSUPPORT_PLATFORM_LINUX_QT_APPLICATION_H

namespace windowing {

// True if the calling thread may show windows: it is the thread of the host's QApplication, or the process has none
// and one could be made. One that was made stays until the process ends.
bool EnsureApplication();

}  // namespace windowing

#endif
