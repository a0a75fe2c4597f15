#include "files/native_path.h"

#include <algorithm>
#include <cstring>

namespace platform {

NativePath::NativePath(const char* path) {
  const std::size_t length = path != nullptr ? strnlen(path, sizeof text) : 0;
  char* const end = length < sizeof text ? std::replace_copy(path, path + length, text, '\\', '/') : text;
  *end = '\0';
}

}  // namespace platform
