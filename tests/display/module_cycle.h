// What hosts of the tests do with the module itself: load it, open a session, ask for a token, which opens the sign-in
// dialog, and unload it.
#ifndef NVSUPPORT_TESTS_DISPLAY_MODULE_CYCLE_H
#define NVSUPPORT_TESTS_DISPLAY_MODULE_CYCLE_H

#include <nvsupport/nvsupport_module.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

namespace nvsupport::testing {

inline bool IsMapped(const std::string& library) {
  std::ifstream maps("/proc/self/maps");
  return std::string(std::istreambuf_iterator<char>(maps), {}).find(library) != std::string::npos;
}

inline void RunModuleCycle(const char* modulePath) {
  NVSupportModule module;
  if (const char* missing = NVSupportOpen(&module, modulePath)) {
    std::cout << "failed " << missing << std::endl;
    return;
  }
  module.openSession("Display Test");
  std::cout << "loaded " << IsMapped("libQt6Widgets") << IsMapped("nvsupport-qt") << std::endl;
  char token[20];
  std::cout << "token " << module.sessionToken(nullptr, token) << std::endl;
  NVSupportClose(&module);
  std::cout << "unloaded " << IsMapped("nvsupport.so") << std::endl;
}

}  // namespace nvsupport::testing

#endif
