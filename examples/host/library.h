// Loads the support library at run time by nvsupport/nvsupport_module.h, as a host does.
#ifndef NVHOST_LIBRARY_H
#define NVHOST_LIBRARY_H

#include <nvsupport/nvsupport_module.h>

#include <string>

namespace nvhost {

// The path of the library: beside the program in a build tree, in the folder for libraries when both are installed.
std::string FindLibrary();

// Keeps the module loaded as long as the object lives.
class Library {
 public:
  // Throws std::runtime_error with the reason if the module or one of its functions is not there.
  explicit Library(const std::string& path);
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() { NVSupportClose(&module); }

  const NVSupportModule& Functions() const { return module; }

 private:
  NVSupportModule module;
};

}  // namespace nvhost

#endif
