// Each key that is opened reads its root's file again: the files are small, few keys are read, and nothing gets out of
// date.
#include "registry/registry.h"

#include <unistd.h>

#include <cstring>
#include <memory>
#include <string>

#include "base/ascii.h"
#include "files/read_file.h"
#include "files/xdg_folders.h"
#include "last_error.h"
#include "registry/registry_file.h"
#include "trace.h"

namespace {

using platform::RegistryValues;
using platform::Trace;
using platform::TraceArea;

constexpr const char* fileBelowConfig = "/norvane/registry.reg";
constexpr std::string_view computerNameKey =
    "hkey_local_machine\\system\\currentcontrolset\\control\\computername\\activecomputername";

constexpr LONG errorInvalidHandle = 6;
constexpr LONG errorInvalidParameter = 87;

bool IsRoot(HKEY key) {
  return key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE;
}

std::optional<std::string> ReadText(const std::string& folder) {
  const std::string path = folder + fileBelowConfig;
  std::optional<std::string> text = platform::ReadSmallFile(path);
  Trace(TraceArea::registry, text ? "file %s" : "no file %s", path.c_str());
  return text;
}

std::string UserText() {
  return ReadText(platform::ConfigHome()).value_or("");
}

std::string MachineText() {
  for (const std::string& folder : platform::ConfigDirs()) {
    if (auto text = ReadText(folder)) return *text;
  }
  return {};
}

RegistryValues ComputerName() {
  char name[256] = {};
  if (gethostname(name, sizeof name - 1) != 0) return {};
  return {{"computername", {platform::REG_SZ, std::string(name) + '\0'}}};
}

const RegistryValues& ValuesOf(HKEY key) {
  return *reinterpret_cast<const RegistryValues*>(key);
}

}  // namespace

LONG RegOpenKeyExA(HKEY root, LPCSTR subKey, DWORD, DWORD, HKEY* key) {
  *key = nullptr;
  if (!IsRoot(root)) return errorInvalidHandle;
  std::string name = root == HKEY_CURRENT_USER ? "HKEY_CURRENT_USER" : "HKEY_LOCAL_MACHINE";
  if (subKey != nullptr && subKey[0] != '\0') name += std::string("\\") + subKey;
  while (name.ends_with('\\')) name.pop_back();

  std::optional<RegistryValues> values =
      base::ToLower(name) == computerNameKey
          ? ComputerName()
          : platform::FindRegistryKey(root == HKEY_CURRENT_USER ? UserText() : MachineText(), name);
  Trace(TraceArea::registry, values ? "key %s" : "no key %s", name.c_str());
  if (!values) return ERROR_FILE_NOT_FOUND;
  *key = reinterpret_cast<HKEY>(new RegistryValues(std::move(*values)));
  return ERROR_SUCCESS;
}

LONG RegQueryValueExA(HKEY key, LPCSTR name, LPDWORD, LPDWORD type, BYTE* data, LPDWORD size) {
  if (key == nullptr) return errorInvalidHandle;
  if (data != nullptr && size == nullptr) return errorInvalidParameter;
  if (IsRoot(key)) return ERROR_FILE_NOT_FOUND;
  const RegistryValues& values = ValuesOf(key);
  const auto found = values.find(base::ToLower(name != nullptr ? name : ""));
  if (found == values.end()) {
    Trace(TraceArea::registry, "no value %s", name != nullptr ? name : "");
    return ERROR_FILE_NOT_FOUND;
  }

  const std::string& bytes = found->second.bytes;
  if (data != nullptr && found->second.type == platform::REG_SZ) {
    Trace(TraceArea::registry, "value %s = \"%s\"", found->first.c_str(), bytes.c_str());
  }
  if (type != nullptr) *type = found->second.type;
  if (size == nullptr) return ERROR_SUCCESS;
  const DWORD room = *size;
  *size = static_cast<DWORD>(bytes.size());
  if (data == nullptr) return ERROR_SUCCESS;
  if (bytes.size() > room) return ERROR_MORE_DATA;
  std::memcpy(data, bytes.data(), bytes.size());
  // A text that was stored without its terminator gets one where there is room.
  if (found->second.type == platform::REG_SZ && bytes.size() < room) data[bytes.size()] = 0;
  return ERROR_SUCCESS;
}

LONG RegCloseKey(HKEY key) {
  if (key == nullptr) return errorInvalidHandle;
  if (!IsRoot(key)) delete reinterpret_cast<const RegistryValues*>(key);
  return ERROR_SUCCESS;
}
