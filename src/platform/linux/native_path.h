// How a path of the library becomes one of this system.
#ifndef NVSUPPORT_PLATFORM_LINUX_NATIVE_PATH_H
#define NVSUPPORT_PLATFORM_LINUX_NATIVE_PATH_H

#include <string>

namespace platform {

// The path with '/' for every '\'. A null path is the empty path, which names no file.
std::string NativePath(const char* path);

}  // namespace platform

#endif
