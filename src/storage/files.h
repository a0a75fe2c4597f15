// Paths, folders and temporary files. A path is plain text; '/', '\' and ':' all count as separators when it is taken
// apart.
#ifndef NVSUPPORT_STORAGE_FILES_H
#define NVSUPPORT_STORAGE_FILES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace nvsupport {

// Place of the last separator, std::string_view::npos if there is none.
std::size_t FindLastSeparator(std::string_view path);
// The text before the last separator, "." if there is none.
std::string GetFolderOf(std::string_view path);
// The text behind the last separator, or the whole path.
std::string GetFileNameOf(std::string_view path);
// The file name without its extension.
std::string GetBaseNameOf(std::string_view path);

using platform::CreatePath;
using platform::IsFolder;
// Full path of a special folder (a CSIDL_ value), with a sub-folder below it that is created when missing. No
// trailing separator. The empty text if the platform does not give the folder.
std::string GetSpecialFolder(int folder, const std::string& subFolder = {});
// Appends the full name of each entry of `folder` that matches; true if there was one.
bool ListFiles(const std::string& folder, const std::string& pattern, std::vector<std::string>& files);

// Full path for a new temporary file, ending in `suffix`, in a folder of the library's own. The process's first call
// deletes the files that earlier runs left. Counts without a lock: call it from one thread.
std::string MakeTempFileName(const std::string& suffix);
// Deletes what matches `pattern` in `folder` and was written before `stamp`.
void SweepOldTempFiles(const std::string& folder, const std::string& pattern, const FILETIME& stamp);

}  // namespace nvsupport

#endif
