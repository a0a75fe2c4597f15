// The few operations of our own, on Windows. The system's loader calls DllMain by itself.
#include "platform/platform.h"

#ifdef __GLIBCXX__
namespace __gnu_cxx {
void __freeres();  // declared in no header
}

namespace {

// The run-time that is linked into the DLL holds 73 KiB in reserve, to throw exceptions from when memory has run out,
// and does not give them back by itself: every load and unload would cost the host as much. First to come to life, so
// that it is the last to go.
struct ReserveOfTheRunTime {
  ~ReserveOfTheRunTime() { __gnu_cxx::__freeres(); }
};
[[gnu::init_priority(101)]] ReserveOfTheRunTime reserve;

}  // namespace
#endif

namespace platform {

ModuleEntry::ModuleEntry() = default;
ModuleEntry::~ModuleEntry() = default;

std::uint32_t GetComputerDeviceId() {
  // FNV-1a over the installation's machine GUID: stable for the installation, and not the GUID itself.
  char guid[64] = {};
  DWORD size = sizeof guid - 1;
  RegistryKey key;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Cryptography", 0, KEY_READ | KEY_WOW64_64KEY,
                    key.put()) == ERROR_SUCCESS) {
    RegQueryValueExA(key.get(), "MachineGuid", nullptr, nullptr, reinterpret_cast<BYTE*>(guid), &size);
  }
  std::uint32_t hash = 2166136261u;
  for (const char* at = guid; *at != '\0'; ++at) hash = (hash ^ static_cast<unsigned char>(*at)) * 16777619u;
  return hash;
}

FileStream OpenFileStream(const char* path, const char* mode) {
  return FileStream(std::fopen(path, mode));
}

std::string ResolveLinks(const std::string& path) {
  return path;
}

void TraceTooLarge(const std::string&, std::size_t) {}

void TraceLanguage(const std::string&, const std::string&, std::size_t) {}

void SetDisplayLanguage(const std::string&) {}

bool PrepareForWait() {
  return true;
}

}  // namespace platform
