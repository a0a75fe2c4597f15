#include "platform/folders.h"

#include "platform/platform.h"

namespace platform {
namespace {

// More than any system takes for a path, and few enough parents for any thread's stack.
constexpr std::size_t longestPath = 4096;

// What stands between folders. A colon does not: it belongs to a name, or a drive, which nobody can make.
constexpr char folderSeparators[] = "/\\";

}  // namespace

bool IsFolder(const std::string& path) {
  const DWORD attributes = GetFileAttributesA(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool CreatePath(const std::string& path) {
  if (GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES) return IsFolder(path);
  if (path.empty() || path == ".") return true;
  if (path.size() > longestPath) return false;
  // Whether the parents are there shows when the folder itself is created.
  const std::size_t separator = path.find_last_of(folderSeparators);
  if (separator != std::string::npos) CreatePath(path.substr(0, separator));
  return CreateDirectoryA(path.c_str(), nullptr) != 0;
}

}  // namespace platform
