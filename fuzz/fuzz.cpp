// usage: nvfuzz [OPTIONS OF LIBFUZZER] [FOLDER FOR NEW INPUTS] CORPUS/TARGET
// The last folder that is named like a target says which one is run.
#include "fuzz.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace nvsupport::fuzz {
namespace {

const Target* chosen = nullptr;

template <std::size_t count>
void Choose(const Target (&targets)[count], std::string_view name) {
  const Target* const found = std::find_if(targets, targets + count, [&](const Target& t) { return t.name == name; });
  if (found != targets + count) chosen = found;
}

}  // namespace

void Require(bool holds) {
  if (!holds) std::abort();
}

std::string FileWith(std::string_view bytes) {
  static const int file = memfd_create("input", MFD_CLOEXEC);
  Require(ftruncate(file, 0) == 0 && pwrite(file, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
  return "/proc/self/fd/" + std::to_string(file);
}

}  // namespace nvsupport::fuzz

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
  using namespace nvsupport::fuzz;
  for (int i = 1; i < *count; ++i) {  // libFuzzer puts options of its own behind them when it merges
    const std::string name = std::filesystem::path((*arguments)[i]).filename();
    Choose(fileTargets, name);
    Choose(replyTargets, name);
    Choose(serverTargets, name);
  }
  if (chosen != nullptr) return 0;
  std::fputs("no folder has the name of a fuzz target\n", stderr);
  std::exit(2);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  nvsupport::fuzz::chosen->run({reinterpret_cast<const char*>(data), size});
  return 0;
}
