// The text form of the registry, REGEDIT4: sections in square brackets name keys, "name"=value lines their values.
#ifndef NVSUPPORT_PLATFORM_LINUX_REGISTRY_FILE_H
#define NVSUPPORT_PLATFORM_LINUX_REGISTRY_FILE_H

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "types.h"

namespace platform {

inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;

struct RegistryValue {
  DWORD type = 0;
  std::string bytes;  // as delivered: a text with its terminator, a number least significant byte first
};

// By name in lower case, whatever the case in the file; the default value has the empty name.
using RegistryValues = std::map<std::string, RegistryValue>;

// The values of one key of a file, nothing if the file has neither the key nor a key below it. `key` begins with the
// root's name. A later value replaces an earlier one; lines that do not follow the form are skipped.
std::optional<RegistryValues> FindRegistryKey(std::string_view text, std::string_view key);

}  // namespace platform

#endif
