#include "library.h"

#include <filesystem>
#include <stdexcept>

namespace nvhost {

std::string FindLibrary() {
  const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const auto beside = folder / "nvsupport.so";
  const auto installed = (folder / NVHOST_LIBRARY_FOLDER / "nvsupport.so").lexically_normal();
  return std::filesystem::exists(beside) || !std::filesystem::exists(installed) ? beside : installed;
}

Library::Library(const std::string& path) {
  // An absolute path: a bare name would be looked for among the system's libraries.
  const std::string file = std::filesystem::absolute(path);
  const char* const missing = NVSupportOpen(&module, file.c_str());
  if (missing == file.c_str()) throw std::runtime_error(std::string("cannot load the support library: ") + dlerror());
  if (missing != nullptr) throw std::runtime_error(file + " lacks the function " + missing);
}

}  // namespace nvhost
