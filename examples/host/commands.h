// The commands of nvhost, each with its arguments. They use the support library alone. A command that cannot do its
// work throws a Failure, which main shows.
#ifndef NVHOST_COMMANDS_H
#define NVHOST_COMMANDS_H

#include <nvsupport/nvsupport_module.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace nvhost {

enum ExitCode {
  done = 0,
  unexpected = 1,
  wrongArguments = 2,
  noModule = 3,
  areaOutOfRange = 4,
  noProducts = 5,
  noAnswer = 6,
  transferFailed = 7,
  noToken = 8,
  cannotWrite = 9,
  noScreen = 10,
  incomplete = 11,
  interruptedBy = 128,  // plus the number of the signal, as shells report it
};

// Why a command ended without having done its work.
struct Failure : std::runtime_error {
  Failure(int exitCode, const std::string& reason) : std::runtime_error(reason), code(exitCode) {}
  int code;  // an ExitCode
};

struct SearchArguments {
  std::vector<MapShopPoint> points;  // degrees; none: everywhere
  bool json = false;
};
void Search(const NVSupportModule& support, const SearchArguments& arguments);

inline constexpr std::string_view standardOutput = "-";  // as the name of a file
inline constexpr const char* outputFault = "standard output cannot be written";

struct DownloadArguments {
  std::string host;
  std::string path;
  std::string file;
};
void Download(const NVSupportModule& support, const DownloadArguments& arguments);

struct ReadArguments {
  std::string host;
  std::string path;
  std::int64_t offset = 0;
  std::int32_t length = 0;
};
void Read(const NVSupportModule& support, const ReadArguments& arguments);

void WhoAmI(const NVSupportModule& support, const std::string& product, bool json);
void Token(const NVSupportModule& support, const std::string& product);

// Becomes nvhost-gui, so it never returns; throws a Failure if that is not possible.
[[noreturn]] void Gui(const std::string& library, const std::string& product);

}  // namespace nvhost

#endif
