// usage: nvfuzz [OPTIONS OF LIBFUZZER] [FOLDER FOR NEW INPUTS] CORPUS/TARGET
// The last folder's name says which target is run.
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
  const std::string name = std::filesystem::path((*arguments)[*count - 1]).filename();
  Choose(fileTargets, name);
  Choose(replyTargets, name);
  if (chosen != nullptr) return 0;
  std::fprintf(stderr, "no fuzz target %s\n", name.c_str());
  std::exit(2);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  nvsupport::fuzz::chosen->run({reinterpret_cast<const char*>(data), size});
  return 0;
}
