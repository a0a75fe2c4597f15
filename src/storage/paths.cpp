#include "storage/paths.h"

namespace nvsupport {

std::size_t FindLastSeparator(std::string_view path) {
  return path.find_last_of("/\\:");
}

std::string GetFolderOf(std::string_view path) {
  const std::size_t separator = FindLastSeparator(path);
  return separator == std::string_view::npos ? "." : std::string(path.substr(0, separator));
}

std::string GetFileNameOf(std::string_view path) {
  const std::size_t separator = FindLastSeparator(path);
  return std::string(separator == std::string_view::npos ? path : path.substr(separator + 1));
}

std::string GetBaseNameOf(std::string_view path) {
  const std::string name = GetFileNameOf(path);
  return name.substr(0, name.rfind('.'));
}

}  // namespace nvsupport
