// The one header that the library includes for the operating system. The build puts exactly one of the folders
// windows/ and linux/ on the include path; both supply the same published names.
#ifndef NVSUPPORT_PLATFORM_PLATFORM_H
#define NVSUPPORT_PLATFORM_PLATFORM_H

#include "system.h"

#include <cstdint>
#include <cstdio>

// The module's entry, defined by the library: reason DLL_PROCESS_ATTACH after its process-wide objects came to life,
// DLL_PROCESS_DETACH before they go.
extern "C" BOOL APIENTRY DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

// Operations of our own where the published interface has none.
namespace platform {

// The last of the process-wide objects. Where the system's loader has no entry call of its own, its life is what
// calls DllMain; elsewhere it does nothing.
class ModuleEntry {
 public:
  ModuleEntry();
  ~ModuleEntry();
  ModuleEntry(const ModuleEntry&) = delete;
  ModuleEntry& operator=(const ModuleEntry&) = delete;
};

// A number that stands for this computer: the same on every run and for every product, never the raw machine id.
std::uint32_t GetComputerDeviceId();

// fopen on a path as the library composes it (either separator). Null when the file cannot be opened. A file opened
// for writing is readable by its owner alone.
std::FILE* OpenFileStream(const char* path, const char* mode);

// Notes the windows that a wait cursor would be shown on. Called by the thread that is going to be blocked, before
// another one sets the cursor for it; where the system itself finds the window below the pointer it does nothing.
void NoteWindowsForWaitCursor();

}  // namespace platform

#endif
