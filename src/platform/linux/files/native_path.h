// How a path of the library becomes one of this system: a '\' is turned to '/' here and nowhere else.
#ifndef NVSUPPORT_PLATFORM_LINUX_NATIVE_PATH_H
#define NVSUPPORT_PLATFORM_LINUX_NATIVE_PATH_H

#include <climits>

namespace platform {

// The path with '/' for every '\'. A null path and one that is longer than the system takes are the empty path, which
// names no file. Takes no memory, so files can be closed and removed when there is none.
class NativePath {
 public:
  explicit NativePath(const char* path);
  const char* c_str() const { return text; }

 private:
  char text[PATH_MAX];
};

}  // namespace platform

#endif
