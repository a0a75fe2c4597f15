// The folders are read from the environment at each call, because a host may set it after it has loaded the module.
#include "files/xdg_folders.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "files/read_file.h"

namespace {

std::string WithoutTrailingSeparators(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

// The value of a variable that names a folder. A relative path counts as none.
std::string FolderVariable(const char* name) {
  const char* value = secure_getenv(name);
  return value != nullptr && value[0] == '/' ? WithoutTrailingSeparators(value) : std::string();
}

std::string Home() {
  std::string home = FolderVariable("HOME");
  if (!home.empty()) return home;
  passwd entry{};
  passwd* found = nullptr;
  std::vector<char> buffer(16 << 10);
  if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) return {};
  return entry.pw_dir != nullptr && entry.pw_dir[0] == '/' ? WithoutTrailingSeparators(entry.pw_dir) : std::string();
}

std::string BelowHome(const char* folder) {
  const std::string home = Home();
  return home.empty() ? home : home + folder;
}

// The text between the quotes of NAME="...", with its backslash escapes; empty if the line is not one.
std::string QuotedValue(std::string_view line, std::string_view name) {
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  if (!line.starts_with(name)) return {};
  line.remove_prefix(name.size());
  if (!line.starts_with("=\"")) return {};
  line.remove_prefix(2);
  std::string value;
  for (std::size_t at = 0; at < line.size() && line[at] != '"'; ++at) {
    if (line[at] == '\\' && at + 1 < line.size()) ++at;
    value += line[at];
  }
  return value;
}

// The documents folder that the user's desktop settings name; empty if they name none.
std::string DocumentsOfUserDirs() {
  constexpr std::string_view homePrefix = "$HOME";
  const std::string text = platform::ReadSmallFile(platform::ConfigHome() + "/user-dirs.dirs").value_or("");
  std::string folder;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    std::string value = QuotedValue(std::string_view(text).substr(start, end - start), "XDG_DOCUMENTS_DIR");
    if (value == homePrefix || value.starts_with("$HOME/")) value.replace(0, homePrefix.size(), Home());
    if (value.starts_with('/')) folder = WithoutTrailingSeparators(value);
    start = end + 1;
  }
  return folder;
}

}  // namespace

namespace platform {

std::string ConfigHome() {
  const std::string folder = FolderVariable("XDG_CONFIG_HOME");
  return folder.empty() ? BelowHome("/.config") : folder;
}

std::string DataHome() {
  const std::string folder = FolderVariable("XDG_DATA_HOME");
  return folder.empty() ? BelowHome("/.local/share") : folder;
}

std::string DocumentsFolder() {
  std::string folder = FolderVariable("XDG_DOCUMENTS_DIR");
  if (folder.empty()) folder = DocumentsOfUserDirs();
  return folder.empty() ? BelowHome("/Documents") : folder;
}

std::vector<std::string> ConfigDirs() {
  const char* value = secure_getenv("XDG_CONFIG_DIRS");
  const std::string_view list = value != nullptr && value[0] != '\0' ? value : "/etc/xdg";
  std::vector<std::string> folders;
  for (std::size_t start = 0; start < list.size();) {
    const std::size_t end = std::min(list.find(':', start), list.size());
    if (list[start] == '/') folders.push_back(WithoutTrailingSeparators(std::string(list.substr(start, end - start))));
    start = end + 1;
  }
  return folders;
}

}  // namespace platform
