// Names for temporary files in a folder of the library's own, and the sweep that clears those of earlier runs.
#ifndef NVSUPPORT_STORAGE_TEMP_FILES_H
#define NVSUPPORT_STORAGE_TEMP_FILES_H

#include <string>

#include "platform/platform.h"

namespace nvsupport {

// Full path for a new temporary file, ending in `suffix`. The process's first call deletes the files that earlier
// runs left. Counts without a lock: call it from one thread.
std::string MakeTempFileName(const std::string& suffix);
// Deletes what matches `pattern` in `folder` and was written before `stamp`.
void SweepOldTempFiles(const std::string& folder, const std::string& pattern, const FILETIME& stamp);

}  // namespace nvsupport

#endif
