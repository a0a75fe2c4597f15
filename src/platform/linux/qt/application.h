// The QApplication that the display lives in: the host's own, or one made for a host without.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_APPLICATION_H
#define NVSUPPORT_PLATFORM_LINUX_QT_APPLICATION_H

#include <string>

namespace windowing {

// True if the calling thread may show windows: it is the thread of the host's QApplication, or the process has none
// and one could be made. One that was made stays until the process ends. Else it says why not, and the way out.
bool EnsureApplication(std::string& whyNot);

// Loads Qt's own texts in the language of that name, where they are installed. A host's application keeps its texts.
void TranslateApplication(const std::string& language);

}  // namespace windowing

#endif
