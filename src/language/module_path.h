// The path of a module, for the names of the files that go with it.
#ifndef NVSUPPORT_LANGUAGE_MODULE_PATH_H
#define NVSUPPORT_LANGUAGE_MODULE_PATH_H

#include <string>

#include "platform/platform.h"

namespace nvsupport {

// Empty if the platform does not give the path or it has more than 259 characters.
inline std::string GetModulePath(HINSTANCE module) {
  char path[MAX_PATH];
  const DWORD length = GetModuleFileNameA(module, path, MAX_PATH);
  return length < MAX_PATH ? std::string(path, length) : std::string();
}

}  // namespace nvsupport

#endif
