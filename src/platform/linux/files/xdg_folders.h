// The user's and the machine's folders after the XDG base directories. Absolute paths without a trailing separator.
#ifndef NVSUPPORT_PLATFORM_LINUX_XDG_FOLDERS_H
#define NVSUPPORT_PLATFORM_LINUX_XDG_FOLDERS_H

#include <string>
#include <vector>

namespace platform {

// The empty text when there is no home folder.
std::string ConfigHome();
std::string DataHome();
// The documents folder: of the environment, else of user-dirs.dirs, else ~/Documents.
std::string DocumentsFolder();
// In order of preference.
std::vector<std::string> ConfigDirs();

}  // namespace platform

#endif
