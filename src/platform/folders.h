// Folders, on every system: what the published operations leave to their caller.
#ifndef NVSUPPORT_PLATFORM_FOLDERS_H
#define NVSUPPORT_PLATFORM_FOLDERS_H

#include <string>

namespace platform {

// What ends an element of a path.
inline constexpr char pathSeparators[] = "/\\:";

bool IsFolder(const std::string& path);
// Creates a folder with its parents; true if the folder exists at the end.
bool CreatePath(const std::string& path);

}  // namespace platform

#endif
