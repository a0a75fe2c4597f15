// What the example hosts ask of the operating system: system_linux.cpp or system_windows.cpp.
#ifndef NVHOST_SYSTEM_H
#define NVHOST_SYSTEM_H

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
// Whether standard output is a terminal; from then on it understands escape sequences.
bool UseTerminal();
// Standard output passes every byte on as it is.
void UseBinaryOutput();
// Ctrl-C and the polite requests to end.
std::vector<int> EndingSignals();

}  // namespace nvhost

#endif
