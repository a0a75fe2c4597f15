// Paths taken apart as plain text. '/', '\' and ':' all count as separators.
#ifndef NVSUPPORT_STORAGE_PATHS_H
#define NVSUPPORT_STORAGE_PATHS_H

#include <cstddef>
#include <string>
#include <string_view>

namespace nvsupport {

// Place of the last separator, std::string_view::npos if there is none.
std::size_t FindLastSeparator(std::string_view path);
// The text before the last separator, "." if there is none.
std::string GetFolderOf(std::string_view path);
// The text behind the last separator, or the whole path.
std::string GetFileNameOf(std::string_view path);
// The file name without its extension.
std::string GetBaseNameOf(std::string_view path);

}  // namespace nvsupport

#endif
