#include "storage/desktop.h"

namespace nvsupport {
namespace {

// One more than a path takes: the longest value that is read, its terminator included.
constexpr DWORD maxValueSize = 261;

}  // namespace

std::string GetRegistryText(HKEY root, const std::string& subKey, const std::string& value,
                            const std::string& defaultText) {
  platform::RegistryKey key;
  if (RegOpenKeyExA(root, subKey.c_str(), 0, KEY_READ, key.put()) != ERROR_SUCCESS) return defaultText;
  char buffer[maxValueSize + 1] = {};  // terminated even when the value is not
  DWORD size = maxValueSize;
  auto* bytes = reinterpret_cast<BYTE*>(buffer);
  if (RegQueryValueExA(key.get(), value.c_str(), nullptr, nullptr, bytes, &size) != ERROR_SUCCESS) return defaultText;
  return buffer;
}

bool OpenDocument(const std::string& target, HWND owner) {
  SHELLEXECUTEINFOA info{};
  info.cbSize = sizeof info;
  info.hwnd = owner;
  info.lpVerb = "open";
  info.lpFile = target.c_str();
  info.nShow = SW_SHOW;
  return ShellExecuteExA(&info) != 0;
}

}  // namespace nvsupport
