// Module loader over the dynamic linker, and the calling thread's last error.
#include "module.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "platform/platform.h"
#include "user/display_selection.h"

namespace {

thread_local DWORD lastError = 0;

// Where the module is loaded; null if the address lies in none.
HINSTANCE ModuleOf(const void* address) {
  Dl_info info{};
  return dladdr(address, &info) != 0 ? static_cast<HINSTANCE>(info.dli_fbase) : nullptr;
}

HINSTANCE ThisModule() {
  return ModuleOf(reinterpret_cast<const void*>(&DllMain));
}

}  // namespace

namespace platform {

ModuleEntry::ModuleEntry() {
  DllMain(ThisModule(), DLL_PROCESS_ATTACH, nullptr);
}
ModuleEntry::~ModuleEntry() {
  DllMain(ThisModule(), DLL_PROCESS_DETACH, nullptr);
  user::CloseDisplay();
}

}  // namespace platform

DWORD GetModuleFileNameA(HMODULE module, LPSTR path, DWORD size) {
  Dl_info info{};
  if (module == nullptr || size == 0 || dladdr(module, &info) == 0 || info.dli_fname == nullptr) return 0;
  // A program is named as it was started; the kernel knows its file.
  char program[4096];
  std::string name = info.dli_fname;
  if (name.find('/') == std::string::npos) {
    const ssize_t length = readlink("/proc/self/exe", program, sizeof program);
    if (length > 0) name.assign(program, static_cast<std::size_t>(length));
  }
  if (name.size() >= size) return 0;
  std::memcpy(path, name.c_str(), name.size() + 1);
  return static_cast<DWORD>(name.size());
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
