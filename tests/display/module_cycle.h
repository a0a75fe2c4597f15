// What hosts of the tests do with the module itself: load it, open a session, ask for a token, which opens the sign-in
// dialog, and unload it.
#ifndef NVSUPPORT_TESTS_DISPLAY_MODULE_CYCLE_H
#define NVSUPPORT_TESTS_DISPLAY_MODULE_CYCLE_H

#include <dlfcn.h>
#include <nvsupport/nvsupport.h>

#include <fstream>
#include <iostream>
#include <string>

namespace nvsupport::testing {

inline bool IsMapped(const std::string& library) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (line.find(library) != std::string::npos) return true;
  }
  return false;
}

inline void RunModuleCycle(const char* modulePath) {
  void* module = dlopen(modulePath, RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) {
    std::cout << "failed " << dlerror() << std::endl;
    return;
  }
  const auto openSession = reinterpret_cast<decltype(&x3e491215)>(dlsym(module, "x3e491215"));
  const auto getToken = reinterpret_cast<decltype(&xff99a5e4)>(dlsym(module, "xff99a5e4"));
  openSession("Display Test");
  std::cout << "loaded " << IsMapped("libQt6Widgets") << IsMapped("nvsupport-qt") << std::endl;
  char token[20];
  std::cout << "token " << getToken(nullptr, token) << std::endl;
  dlclose(module);
  std::cout << "unloaded " << IsMapped("nvsupport.so") << std::endl;
}

}  // namespace nvsupport::testing

#endif
