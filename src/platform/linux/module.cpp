// The module loader, over the dynamic linker.
#include "module.h"

#include <dlfcn.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/platform.h"

namespace {

// The path of this module, kept from when it was loaded: the host may load it by a relative path and change its folder
// afterwards. A plain array, because process-wide objects still ask for it while they go.
char thisModulePath[PATH_MAX] = {};

// Where the module is loaded; null if the address lies in none.
HINSTANCE ModuleOf(const void* address) {
  Dl_info info{};
  return dladdr(address, &info) != 0 ? static_cast<HINSTANCE>(info.dli_fbase) : nullptr;
}

HINSTANCE ThisModule() {
  return ModuleOf(reinterpret_cast<const void*>(&DllMain));
}

// Copies a text with its terminator; 0 if it does not fit.
DWORD CopyPath(std::string_view path, LPSTR buffer, DWORD size) {
  if (path.size() >= size) return 0;
  std::memcpy(buffer, path.data(), path.size());
  buffer[path.size()] = '\0';
  return static_cast<DWORD>(path.size());
}

// Copies the path of the file that the module at an address was loaded from, as it was given to the loader; 0 if there
// is none or it does not fit.
DWORD CopyLoadedFile(const void* address, LPSTR buffer, DWORD size) {
  Dl_info info{};
  if (dladdr(address, &info) == 0 || info.dli_fname == nullptr) return 0;
  const std::string_view name = info.dli_fname;
  if (name.find('/') != std::string_view::npos) return CopyPath(name, buffer, size);
  // A program is named as it was started; the kernel knows its file.
  char program[PATH_MAX];
  const ssize_t length = readlink("/proc/self/exe", program, sizeof program);
  return CopyPath(length > 0 ? std::string_view(program, static_cast<std::size_t>(length)) : name, buffer, size);
}

}  // namespace

namespace platform {

void RememberModulePath() {
  char path[PATH_MAX];
  if (CopyLoadedFile(reinterpret_cast<const void*>(&DllMain), path, sizeof path) == 0) return;
  DWORD folder = 0;
  if (path[0] != '/' && getcwd(thisModulePath, sizeof thisModulePath - 1) != nullptr) {
    folder = static_cast<DWORD>(std::strlen(thisModulePath));
    thisModulePath[folder++] = '/';
  }
  if (CopyPath(path, thisModulePath + folder, sizeof thisModulePath - folder) == 0) thisModulePath[0] = '\0';
}

std::string ResolveLinks(const std::string& path) {
  char target[PATH_MAX];
  return realpath(path.c_str(), target) != nullptr ? target : path;
}

}  // namespace platform

DWORD GetModuleFileNameA(HMODULE module, LPSTR path, DWORD size) {
  if (module == nullptr) return 0;
  return module == ThisModule() ? CopyPath(thisModulePath, path, size) : CopyLoadedFile(module, path, size);
}

HMODULE GetModuleHandleA(LPCSTR name) {
  return name == nullptr ? ThisModule() : nullptr;
}

HMODULE LoadLibraryA(LPCSTR name) {
  return static_cast<HMODULE>(dlopen(name, RTLD_NOW | RTLD_LOCAL));
}
