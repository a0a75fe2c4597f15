#include "library.h"

#include <fstream>
#include <stdexcept>

#include "system.h"

namespace nvhost {

std::string FindLibrary() {
  const auto isThere = [](const std::string& file) { return std::ifstream(file).is_open(); };
  const std::string beside = BesideProgram(NVHOST_LIBRARY_NAME);
  const std::string installed = BesideProgram(NVHOST_LIBRARY_FOLDER "/" NVHOST_LIBRARY_NAME);
  return isThere(beside) || !isThere(installed) ? beside : installed;
}

Library::Library(const std::string& path) {
  // Made absolute, because a bare name would be looked for among the system's libraries.
  const std::string file = AbsolutePath(path);
  const char* const missing = NVSupportOpen(&module, file.c_str());
  if (missing == file.c_str()) throw std::runtime_error("cannot load the support library: " + WhyNotLoaded());
  if (missing != nullptr) throw std::runtime_error(file + " lacks the function " + missing);
}

}  // namespace nvhost
