// Walks the entries of a folder, for the functions that list and sweep files.
#ifndef NVSUPPORT_STORAGE_FILE_SEARCH_H
#define NVSUPPORT_STORAGE_FILE_SEARCH_H

#include <string>

#include "platform/platform.h"
#include "storage/scoped_handle.h"

namespace nvsupport {

// Calls `visit` with the WIN32_FIND_DATAA of each entry that matches; true if there was one. `target` is a folder, a
// separator and a pattern.
template <class Visit>
bool WalkFiles(const std::string& target, Visit visit) {
  WIN32_FIND_DATAA entry{};
  const HANDLE first = FindFirstFileA(target.c_str(), &entry);
  if (first == INVALID_HANDLE_VALUE) return false;
  const ScopedHandle<HANDLE, FindClose> find(first);
  do visit(entry);
  while (FindNextFileA(find.get(), &entry));
  return true;
}

}  // namespace nvsupport

#endif
