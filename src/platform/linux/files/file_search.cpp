// The search for files, which matches names as Windows does.
#include "files/file_search.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "base/ascii.h"
#include "base/scoped_handle.h"
#include "files/files.h"
#include "files/native_path.h"

namespace {

// '*' is any run of characters, '?' any one. Goes back to the last '*' only, so its cost is bounded by the product of
// the lengths.
bool MatchesPattern(std::string_view name, std::string_view pattern) {
  std::size_t n = 0;
  std::size_t p = 0;
  std::size_t star = std::string_view::npos;
  std::size_t resume = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      resume = n;
    } else if (p < pattern.size() && (pattern[p] == '?' || base::ToLower(pattern[p]) == base::ToLower(name[n]))) {
      ++p;
      ++n;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      n = ++resume;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

class FileSearch {
 public:
  // The target names its folder, as all callers have one.
  explicit FileSearch(const std::string& target) {
    const std::size_t name = target.rfind('/') + 1;
    pattern = target.substr(name);
    folder.reset(opendir(target.substr(0, name).c_str()));
  }

  bool Next(WIN32_FIND_DATAA& data) {
    if (!folder) return false;
    while (const dirent* entry = readdir(folder.get())) {
      if (Matches(entry->d_name) && Fill(entry->d_name, data)) return true;
    }
    return false;
  }

 private:
  // A pattern that ends in ".*" also takes the names that have no dot there.
  bool Matches(std::string_view name) const {
    if (MatchesPattern(name, pattern)) return true;
    return pattern.ends_with(".*") && MatchesPattern(name, std::string_view(pattern).substr(0, pattern.size() - 2));
  }

  bool Fill(const char* name, WIN32_FIND_DATAA& data) const {
    const std::size_t length = std::strlen(name);
    struct stat status{};
    // NOLINTNEXTLINE(clang-analyzer-unix.StdCLibraryFunctions): an open folder has a descriptor
    if (length >= sizeof data.cFileName || fstatat(dirfd(folder.get()), name, &status, AT_SYMLINK_NOFOLLOW) != 0)
      return false;
    data.dwFileAttributes = S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
    data.ftLastWriteTime = platform::ToFileTime(status.st_mtim);
    std::memcpy(data.cFileName, name, length + 1);
    return true;
  }

  base::ScopedHandle<DIR*, &closedir> folder;
  std::string pattern;
};

}  // namespace

HANDLE FindFirstFileA(LPCSTR pattern, WIN32_FIND_DATAA* data) {
  auto search = std::make_unique<FileSearch>(platform::NativePath(pattern).c_str());
  return search->Next(*data) ? search.release() : INVALID_HANDLE_VALUE;
}

BOOL FindNextFileA(HANDLE find, WIN32_FIND_DATAA* data) {
  return static_cast<FileSearch*>(find)->Next(*data);
}

BOOL FindClose(HANDLE find) {
  if (find == nullptr || find == INVALID_HANDLE_VALUE) return FALSE;
  delete static_cast<FileSearch*>(find);
  return TRUE;
}
