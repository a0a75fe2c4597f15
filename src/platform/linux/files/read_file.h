// Small configuration files of the system, read whole.
#ifndef NVSUPPORT_PLATFORM_LINUX_READ_FILE_H
#define NVSUPPORT_PLATFORM_LINUX_READ_FILE_H

#include <cstddef>
#include <optional>
#include <string>

namespace platform {

// The first `limit` bytes of a file; nothing if there is no such file.
std::optional<std::string> ReadFileUpTo(const std::string& path, std::size_t limit);

}  // namespace platform

#endif
