// Paths are in the code page of the system, as the library takes them.
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <system_error>

#include "system.h"

namespace nvhost {

std::string BesideProgram(const std::string& path) {
  std::array<char, MAX_PATH> file = {};
  GetModuleFileNameA(nullptr, file.data(), static_cast<DWORD>(file.size() - 1));
  const std::string program = file.data();
  return AbsolutePath(program.substr(0, program.rfind('\\') + 1) + path);
}

std::string AbsolutePath(const std::string& path) {
  std::array<char, MAX_PATH> file = {};
  const DWORD length = GetFullPathNameA(path.c_str(), static_cast<DWORD>(file.size()), file.data(), nullptr);
  return length < file.size() ? std::string(file.data(), length) : path;
}

std::string WhyNotLoaded() {
  return std::system_category().message(static_cast<int>(GetLastError()));
}

bool IsOpenHere(const std::string&) {
  return false;  // what is open cannot be removed
}

bool UseTerminal() {
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD mode = 0;
  return GetConsoleMode(output, &mode) && SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

void UseBinaryOutput() {
  _setmode(_fileno(stdout), _O_BINARY);
}

std::vector<int> EndingSignals() {
  return {SIGINT, SIGTERM, SIGBREAK};
}

}  // namespace nvhost
