// Special folders, and which targets go to the user's viewer.
#include "shell.h"

#include <strings.h>

#include <cstring>
#include <string>
#include <string_view>

#include "files/files.h"
#include "files/native_path.h"
#include "files/xdg_folders.h"
#include "platform/platform.h"
#include "viewer.h"

namespace {

std::string FolderOf(int folder) {
  switch (folder) {
    case CSIDL_LOCAL_APPDATA:
      return platform::DataHome();
    case CSIDL_PERSONAL:
      return platform::DocumentsFolder();
    default:
      return {};
  }
}

bool IsWebAddress(const char* target) {
  return strncasecmp(target, "http://", 7) == 0 || strncasecmp(target, "https://", 8) == 0;
}

// What the viewer gets for a target: a web address as it is, a document by its path. Empty for targets that it must not
// get: other kinds of address, and anything that it would take for an option.
std::string ViewerTarget(const char* target) {
  if (target == nullptr) return {};
  for (const char* at = target; *at != '\0'; ++at) {
    if (static_cast<unsigned char>(*at) < ' ' || *at == 0x7F) return {};
  }
  if (IsWebAddress(target)) return target;
  std::string path = platform::NativePath(target).c_str();
  if (GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES) return {};
  return path.starts_with('/') ? path : "./" + path;
}

}  // namespace

BOOL SHGetSpecialFolderPathA(HWND, LPSTR path, int folder, BOOL create) {
  const std::string name = FolderOf(folder);
  if (name.empty() || name.size() >= MAX_PATH) return FALSE;
  // The documents folder is the user's: where there is none, a program that a library is loaded in makes none.
  const bool there = create && folder != CSIDL_PERSONAL ? platform::CreatePath(name) : platform::IsFolder(name);
  if (!there) return FALSE;
  std::memcpy(path, name.c_str(), name.size() + 1);
  return TRUE;
}

BOOL ShellExecuteExA(SHELLEXECUTEINFOA* info) {
  const std::string target = ViewerTarget(info->lpFile);
  if (target.empty()) return FALSE;
  const bool shown = platform::StartViewer(target.c_str());
  // The user has asked for it, and can still open it himself.
  if (!shown) platform::WriteToStandardError("xdg-open cannot be started to show " + target + "\n");
  return shown;
}
