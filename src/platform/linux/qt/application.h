// The QApplication that the display lives in: the host's own, or one that is made for a host without Qt.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_APPLICATION_H
#define NVSUPPORT_PLATFORM_LINUX_QT_APPLICATION_H

#include <string>

namespace windowing {

// True if the calling thread may show windows: it is the thread of the host's QApplication, or the process had none
// and one has been made, which then stays until the process ends. Otherwise `whyNot` says why, and what to do.
bool EnsureApplication(std::string& whyNot);

// Loads Qt's own texts in this language, if they are installed. The host's own QApplication keeps its texts.
void TranslateApplication(const std::string& language);

}  // namespace windowing

#endif
