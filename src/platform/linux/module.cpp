// Module loader over the dynamic linker, and the calling thread's last error.
#include "module.h"

#include <dlfcn.h>
#include <nvsupport/nvsupport.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <string>

#include "platform/platform.h"
#include "windowing/display_selection.h"

namespace {

// For who looks into the file.
[[gnu::used]] constexpr char version[] = "nvsupport " NVSUPPORT_VERSION;

thread_local DWORD lastError = 0;

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

// The file that the module at an address was loaded from, as the loader was told; empty if there is none.
std::string LoadedFile(const void* address) {
  Dl_info info{};
  if (dladdr(address, &info) == 0 || info.dli_fname == nullptr) return {};
  std::string name = info.dli_fname;
  if (name.find('/') != std::string::npos) return name;
  // A program is named as it was started; the kernel knows its file.
  char program[PATH_MAX];
  const ssize_t length = readlink("/proc/self/exe", program, sizeof program);
  return length > 0 ? std::string(program, static_cast<std::size_t>(length)) : name;
}

// Copies a text with its terminator; 0 if it does not fit.
DWORD CopyPath(const std::string& path, LPSTR buffer, DWORD size) {
  if (path.size() >= size) return 0;
  std::memcpy(buffer, path.c_str(), path.size() + 1);
  return static_cast<DWORD>(path.size());
}

void RememberThisModule() {
  std::string path = LoadedFile(reinterpret_cast<const void*>(&DllMain));
  char folder[PATH_MAX];
  if (!path.starts_with('/') && getcwd(folder, sizeof folder) != nullptr) path = std::string(folder) + '/' + path;
  CopyPath(path, thisModulePath, sizeof thisModulePath);
}

}  // namespace

namespace platform {

ModuleEntry::ModuleEntry() {
  RememberThisModule();
  DllMain(ThisModule(), DLL_PROCESS_ATTACH, nullptr);
}
ModuleEntry::~ModuleEntry() {
  DllMain(ThisModule(), DLL_PROCESS_DETACH, nullptr);
  windowing::CloseDisplay();
}

}  // namespace platform

DWORD GetModuleFileNameA(HMODULE module, LPSTR path, DWORD size) {
  if (module == nullptr) return 0;
  return CopyPath(module == ThisModule() ? thisModulePath : LoadedFile(module), path, size);
}

HMODULE GetModuleHandleA(LPCSTR name) {
  return name == nullptr ? ThisModule() : nullptr;
}

HMODULE LoadLibraryA(LPCSTR name) {
  return static_cast<HMODULE>(dlopen(name, RTLD_NOW | RTLD_LOCAL));
}

DWORD GetLastError() {
  return lastError;
}

void SetLastError(DWORD error) {
  lastError = error;
}

void FatalAppExitA(UINT, LPCSTR text) {
  std::fputs(text, stderr);
  _exit(1);
}
