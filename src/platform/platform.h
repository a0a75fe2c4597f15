// The seam to the operating system, and the one header that the library includes for it. The seam is the Windows API:
// the library calls the operating system by the names, types and signatures that are published for Windows. On
// Windows system.h includes the system's own headers, so the library's calls are the system's; on Linux our layer
// (linux/) supplies the same names. The build puts exactly one of the folders windows/ and linux/ on the include path.
#ifndef NVSUPPORT_PLATFORM_PLATFORM_H
#define NVSUPPORT_PLATFORM_PLATFORM_H

#include "system.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "base/scoped_handle.h"
#include "platform/folders.h"
#include "platform/secret.h"

// The module's entry, defined by the library: reason DLL_PROCESS_ATTACH after its process-wide objects came to life,
// DLL_PROCESS_DETACH before they go.
extern "C" BOOL APIENTRY DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

namespace platform {

// Owners of the handles that the published interface gives.
using FileSearchHandle = base::ScopedHandle<HANDLE, &FindClose>;
using FileStream = base::ScopedHandle<std::FILE*, &std::fclose>;
using InternetHandle = base::ScopedHandle<HINTERNET, &InternetCloseHandle>;
using ObjectHandle = base::ScopedHandle<HANDLE, &CloseHandle>;  // of a file, event or thread
using RegistryKey = base::ScopedHandle<HKEY, &RegCloseKey>;

// Operations of our own where the published interface has none.

// The last of the process-wide objects. Where the system's loader does not call DllMain, the constructor and destructor
// do; elsewhere they do nothing.
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
FileStream OpenFileStream(const char* path, const char* mode);

// Where a path leads through symbolic links; the path itself if it leads nowhere, or where the loader sees to links.
std::string ResolveLinks(const std::string& path);

// Writes to the trace, where the system has one, that a file is not read because it has more bytes than `limit`.
void TraceTooLarge(const std::string& path, std::size_t limit);

// Writes the chosen language and the number of texts in its catalogue to the trace, where the system has one.
void TraceLanguage(const std::string& language, const std::string& catalogue, std::size_t texts);

// Sets the language of what the system itself says in dialogs, as in the menu of an edit. It is named in that language,
// such as "Deutsch". Does nothing where the system chooses that language itself.
void SetDisplayLanguage(const std::string& name);

// Called by the thread that is going to be blocked: shows its dialogs as they are meanwhile. False if there can be no
// window of its own to show a wait cursor over.
bool PrepareForWait();

}  // namespace platform

#endif
