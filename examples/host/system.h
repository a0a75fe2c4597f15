// What the example hosts ask of the operating system: system_linux.cpp or system_windows.cpp.
#ifndef NVHOST_SYSTEM_H
#define NVHOST_SYSTEM_H

#include <cstddef>
#include <string>
#include <vector>

namespace nvhost {

// A path from the folder of the program that runs.
std::string BesideProgram(const std::string& path);
std::string AbsolutePath(const std::string& path);
// Why the module could not be loaded that was asked for last.
std::string WhyNotLoaded();
// Whether this process itself has the file open and can remove it all the same.
bool IsOpenHere(const std::string& file);
// Whether the user may make files there.
bool TakesNewFiles(const std::string& folder);
// False where no window can open for certain.
bool HasScreen();
// How wide the terminal is that standard error goes to, which understands escape sequences; 0 if it is none.
std::size_t TerminalColumns();
// Standard output passes every byte on as it is.
void UseBinaryOutput();
// Ctrl-C and the polite requests to end.
std::vector<int> EndingSignals();

}  // namespace nvhost

#endif
