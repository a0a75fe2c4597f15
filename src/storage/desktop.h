// What the library asks of the user's desktop: texts of the registry, and the viewer of documents and web addresses.
#ifndef NVSUPPORT_STORAGE_DESKTOP_H
#define NVSUPPORT_STORAGE_DESKTOP_H

#include <string>

#include "platform/platform.h"

namespace nvsupport {

// The value as text; `defaultText` when key or value is missing or the value is longer than 260 characters.
std::string GetRegistryText(HKEY root, const std::string& subKey, const std::string& value,
                            const std::string& defaultText);

// Hands a document or web address to its viewer. True if the platform took the request; does not wait for the viewer.
bool OpenDocument(const std::string& target, HWND owner);

}  // namespace nvsupport

#endif
