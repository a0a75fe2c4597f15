#include "storage/temp_files.h"

#include <cstdint>
#include <vector>

#include "storage/file_search.h"
#include "storage/folders.h"
#include "storage/format_text.h"

namespace nvsupport {
namespace {

// Names handed out by this process.
std::uint32_t nameCount = 0;

FILETIME CurrentTime() {
  SYSTEMTIME now{};
  FILETIME time{};
  GetSystemTime(&now);
  SystemTimeToFileTime(&now, &time);
  return time;
}

}  // namespace

std::string MakeTempFileName(const std::string& suffix) {
  const std::string folder = GetSpecialFolder(CSIDL_LOCAL_APPDATA, "Norvane\\Temp");
  // Without a folder of its own the library has left nothing, and a sweep would go through the root folder.
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
