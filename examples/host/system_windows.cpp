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
  return false;  // open files cannot be removed
}

bool TakesNewFiles(const std::string& folder) {
  constexpr int writing = 2;
  return _access(folder.c_str(), writing) == 0;
}

bool HasScreen() {
  return true;
}

std::size_t TerminalColumns() {
  const HANDLE output = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  CONSOLE_SCREEN_BUFFER_INFO buffer = {};
  const bool isTerminal = GetConsoleMode(output, &mode) &&
                          SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) &&
                          GetConsoleScreenBufferInfo(output, &buffer);
  return isTerminal ? static_cast<std::size_t>(buffer.dwSize.X) : 0;
}

void UseBinaryOutput() {
  _setmode(_fileno(stdout), _O_BINARY);
}

std::vector<int> EndingSignals() {
  return {SIGINT, SIGTERM, SIGBREAK};
}

}  // namespace nvhost
