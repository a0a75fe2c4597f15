#include "storage/folders.h"

#include "platform/platform.h"
#include "storage/file_search.h"
#include "storage/paths.h"

namespace nvsupport {
namespace {

// More than any system takes for a path, and few enough parents for any thread's stack.
constexpr std::size_t longestPath = 4096;

}  // namespace

bool CreatePath(const std::string& path) {
  const DWORD attributes = GetFileAttributesA(path.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES) return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  if (path.empty() || path == ".") return true;
  if (path.size() > longestPath) return false;
  // Whether the parents are there shows when the folder itself is created.
  CreatePath(GetFolderOf(path));
  return CreateDirectoryA(path.c_str(), nullptr) != 0;
}

std::string GetSpecialFolder(int folder, const std::string& subFolder) {
  char buffer[MAX_PATH] = {};
  if (!SHGetSpecialFolderPathA(nullptr, buffer, folder, TRUE)) return {};
  std::string path = buffer;
  if (subFolder.empty()) return path;
  path += '\\' + subFolder;
  CreatePath(path);
  return path;
}

bool ListFiles(const std::string& folder, const std::string& pattern, std::vector<std::string>& files) {
  const std::string prefix = folder + '\\';
  return WalkFiles(prefix + pattern, [&](const WIN32_FIND_DATAA& entry) { files.push_back(prefix + entry.cFileName); });
}

}  // namespace nvsupport
