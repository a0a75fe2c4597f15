// What the example hosts ask of the operating system: system_linux.cpp or system_windows.cpp.
#ifndef NVHOST_SYSTEM_H
#define NVHOST_SYSTEM_H

#include <cstddef>
#include <string>
#include <vector>

namespace nvhost {

// The absolute path of a file, given from the folder of this program.
std::string BesideProgram(const std::string& path);
std::string AbsolutePath(const std::string& path);
// Why the last module that was asked for could not be loaded.
std::string WhyNotLoaded();
// True if this process has the file open, and open files can be removed.
bool IsOpenHere(const std::string& file);
// True if the user may make files there.
bool TakesNewFiles(const std::string& folder);
// False if certainly no window can open.
bool HasScreen();
// The width of the terminal that standard error goes to; 0 if that is no terminal that understands escape sequences.
std::size_t TerminalColumns();
// Makes standard output pass every byte on unchanged.
void UseBinaryOutput();
// Ctrl-C and the polite requests to end.
std::vector<int> EndingSignals();

}  // namespace nvhost

#endif
