#include "files/read_file.h"

#include <algorithm>
#include <cstdio>

#include "platform/platform.h"

namespace platform {

std::optional<std::string> ReadFileUpTo(const std::string& path, std::size_t limit) {
  const FileStream stream = OpenFileStream(path.c_str(), "r");
  if (!stream) return std::nullopt;
  std::string text;
  char part[4096];
  while (text.size() < limit) {
    const std::size_t count = std::fread(part, 1, std::min(sizeof part, limit - text.size()), stream.get());
    if (count == 0) break;
    text.append(part, count);
  }
  return text;
}

}  // namespace platform
