#include "files/read_file.h"

#include "base/read_stream.h"
#include "platform/platform.h"

namespace platform {

std::optional<std::string> ReadSmallFile(const std::string& path) {
  constexpr std::size_t limit = 4 << 20;
  const FileStream stream = OpenFileStream(path.c_str(), "r");
  return stream ? base::ReadStream(stream.get(), limit) : std::nullopt;
}

}  // namespace platform
