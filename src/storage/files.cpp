#include "storage/files.h"

#include <cstdint>

#include "storage/format_text.h"

namespace nvsupport {
namespace {

// Names of temporary files handed out by this process.
std::uint32_t nameCount = 0;

// Calls `visit` with the WIN32_FIND_DATAA of each entry that matches; true if there was one. `target` is a folder, a
// separator and a pattern.
template <class Visit>
bool WalkFiles(const std::string& target, Visit visit) {
  WIN32_FIND_DATAA entry{};
  const HANDLE first = FindFirstFileA(target.c_str(), &entry);
  if (first == INVALID_HANDLE_VALUE) return false;
  const platform::FileSearchHandle find(first);
  do visit(entry);
  while (FindNextFileA(find.get(), &entry));
  return true;
}

FILETIME CurrentTime() {
  SYSTEMTIME now{};
  FILETIME time{};
  GetSystemTime(&now);
  SystemTimeToFileTime(&now, &time);
  return time;
}

}  // namespace

std::size_t FindLastSeparator(std::string_view path) {
  return path.find_last_of(platform::pathSeparators);
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

std::string MakeTempFileName(const std::string& suffix) {
  const std::string folder = GetSpecialFolder(CSIDL_LOCAL_APPDATA, "Norvane\\Temp");
  // Without a folder of its own the library has left no files, and a sweep would search the root folder.
  if (nameCount == 0 && !folder.empty()) SweepOldTempFiles(folder, "T*.*", CurrentTime());
  ++nameCount;
  const std::uint32_t number = static_cast<std::uint32_t>(GetCurrentProcessId()) << 8 | nameCount;
  return folder + FormatText("\\T%X", static_cast<unsigned>(number)) + suffix;
}

void SweepOldTempFiles(const std::string& folder, const std::string& pattern, const FILETIME& stamp) {
  const std::string prefix = folder + '\\';
  std::vector<std::string> files;
  WalkFiles(prefix + pattern, [&](const WIN32_FIND_DATAA& entry) {
    if (CompareFileTime(&entry.ftLastWriteTime, &stamp) < 0) files.push_back(prefix + entry.cFileName);
  });
  for (const std::string& file : files) DeleteFileA(file.c_str());
}

}  // namespace nvsupport
