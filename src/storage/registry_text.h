// Texts of the registry.
#ifndef NVSUPPORT_STORAGE_REGISTRY_TEXT_H
#define NVSUPPORT_STORAGE_REGISTRY_TEXT_H

#include <string>

#include "platform/platform.h"

namespace nvsupport {

// The value as text; `defaultText` when key or value is missing or the value is longer than 260 characters.
std::string GetRegistryText(HKEY root, const std::string& subKey, const std::string& value,
                            const std::string& defaultText);

}  // namespace nvsupport

#endif
