// nvhost read: a stretch of a file on a web server, to standard output.
#include <cstdio>
#include <vector>

#include "commands.h"
#include "system.h"

namespace nvhost {
void Read(const NVSupportModule& support, const ReadArguments& arguments) {
  std::vector<char> buffer(static_cast<std::size_t>(arguments.length));
  const std::int32_t got = support.readRange(arguments.host.c_str(), arguments.path.c_str(), arguments.offset,
                                             arguments.length, buffer.data(), nullptr, nullptr);
  if (got == arguments.length) {
    UseBinaryOutput();
    if (std::fwrite(buffer.data(), 1, buffer.size(), stdout) != buffer.size()) {
      throw Failure(cannotWrite, outputFault);
    }
    return;
  }
  throw Failure(transferFailed, got < 0 ? arguments.host + " cannot be reached, or does not give these bytes of " +
                                              arguments.path + "; --trace tells which"
                                        : "the file ended or the transfer broke off before all bytes were there");
}

}  // namespace nvhost
