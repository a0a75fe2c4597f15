// Folders: creation with all parents, the user's special folders, listing.
#ifndef NVSUPPORT_STORAGE_FOLDERS_H
#define NVSUPPORT_STORAGE_FOLDERS_H

#include <string>
#include <vector>

namespace nvsupport {

// Creates a folder with its parents; true if the folder exists at the end.
bool CreatePath(const std::string& path);
// Full path of a special folder (a CSIDL_ value), with a sub-folder below it that is created when missing. No
// trailing separator. The empty text if the platform does not give the folder.
std::string GetSpecialFolder(int folder, const std::string& subFolder = {});
// Appends the full name of each entry of `folder` that matches; true if there was one.
bool ListFiles(const std::string& folder, const std::string& pattern, std::vector<std::string>& files);

}  // namespace nvsupport

#endif
