// Small configuration files of the system, read whole.
#ifndef NVSUPPORT_PLATFORM_LINUX_READ_FILE_H
#define NVSUPPORT_PLATFORM_LINUX_READ_FILE_H

#include <optional>
#include <string>

namespace platform {

// Nothing if there is no such file, or it is larger than 4 MiB: more than any that a person or a program writes.
std::optional<std::string> ReadSmallFile(const std::string& path);

}  // namespace platform

#endif
