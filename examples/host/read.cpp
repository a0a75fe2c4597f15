// nvhost read: a stretch of a file on a web server, to standard output.
#include <cstdio>
#include <limits>
#include <vector>

#include "commands.h"
#include "system.h"

namespace nvhost {
namespace {

struct Arguments {
  std::string host;
  std::string path;
  std::int64_t offset = 0;
  std::int32_t length = 0;
};

void Run(const NVSupportModule& support, const Arguments& arguments) {
  std::vector<char> buffer(static_cast<std::size_t>(arguments.length));
  const std::int32_t got = support.readRange(arguments.host.c_str(), arguments.path.c_str(), arguments.offset,
                                             arguments.length, buffer.data(), nullptr, nullptr);
  if (got == arguments.length) {
    UseBinaryOutput();
    if (std::fwrite(buffer.data(), 1, buffer.size(), stdout) != buffer.size()) {
      throw Failure(cannotWrite, "standard output cannot be written");
    }
    return;
  }
  throw Failure(transferFailed,
                got < 0 ? arguments.host + " cannot be reached, or does not give these bytes of " + arguments.path
                        : "the file ended or the transfer broke off before all bytes were there");
}

}  // namespace

void AddRead(CLI::App& app, Work& chosen) {
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* const command = app.add_subcommand("read", "Write some bytes of a file on a web server to standard output");
  command->add_option("host", arguments->host, "Name of the web server")->required()->type_name("HOST");
  command->add_option("path", arguments->path, "Path on the server")->required()->type_name("PATH");
  command->add_option("offset", arguments->offset, "First byte, counted from 0")
      ->required()
      ->type_name("OFFSET")
      ->check(CLI::Range(std::int64_t{0}, std::numeric_limits<std::int64_t>::max()));
  command->add_option("length", arguments->length, "Number of bytes")
      ->required()
      ->type_name("LENGTH")
      ->check(CLI::Range(std::int32_t{1}, std::numeric_limits<std::int32_t>::max()));
  command->callback(
      [arguments, &chosen] { chosen = [arguments](const NVSupportModule& support) { Run(support, *arguments); }; });
}

}  // namespace nvhost
