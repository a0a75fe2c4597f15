// Hands documents and web addresses to the user's viewer.
#ifndef NVSUPPORT_STORAGE_OPEN_DOCUMENT_H
#define NVSUPPORT_STORAGE_OPEN_DOCUMENT_H

#include <string>

#include "platform/platform.h"

namespace nvsupport {

// True if the platform took the request; does not wait for the viewer.
bool OpenDocument(const std::string& target, HWND owner);

}  // namespace nvsupport

#endif
