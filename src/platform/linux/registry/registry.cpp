// Each key that is opened reads its root's file again: the files are small, few keys are read, and nothing gets out of
// date.
#include "registry/registry.h"

#include <unistd.h>

#include <cstdlib>
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
constexpr std::string_view installationKey = "hkey_local_machine\\software\\norvane";
constexpr const char* installedLanguage = "inst_language";

// Its values for the languages that have a catalogue, by the language of a locale such as de_AT.UTF-8.
constexpr std::pair<std::string_view, const char*> localeIds[] = {{"de", "1031"}, {"fr", "1036"}, {"nl", "1043"}};

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

// The first of these variables that is not empty decides, as everywhere.
std::string DesktopLocale() {
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* const locale = secure_getenv(variable);
    if (locale != nullptr && locale[0] != '\0') return locale;
  }
  return {};
}

// Where no file tells the language of the installation, the desktop's stands for it.
void AddDesktopLanguage(std::optional<RegistryValues>& values) {
  if (values && values->contains(installedLanguage)) return;
  const std::string locale = DesktopLocale();
  for (const auto& [language, id] : localeIds) {
    if (locale.substr(0, locale.find_first_of("_.@")) != language) continue;
    if (!values) values.emplace();
    (*values)[installedLanguage] = {platform::REG_SZ, std::string(id) + '\0'};
    Trace(TraceArea::registry, "%s from the locale %s", installedLanguage, locale.c_str());
  }
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

  const std::string plainName = base::ToLower(name);
  std::optional<RegistryValues> values =
      plainName == computerNameKey
          ? ComputerName()
          : platform::FindRegistryKey(root == HKEY_CURRENT_USER ? UserText() : MachineText(), name);
  if (plainName == installationKey) AddDesktopLanguage(values);
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
