// The commands of nvhost. Each adds itself to the command line; the one that the user asks for puts its work, with the
// arguments in it, into `chosen`, and main runs that once the support library is loaded.
#ifndef NVHOST_COMMANDS_H
#define NVHOST_COMMANDS_H

#include <CLI/CLI.hpp>

#include <functional>
#include <stdexcept>
#include <string>

#include "library.h"

namespace nvhost {

enum ExitCode {
  done = 0,
  unexpected = 1,
  wrongArguments = 2,
  noModule = 3,
  areaOutOfRange = 4,
  noProducts = 5,
  noAnswer = 6,
  transferFailed = 7,
  noToken = 8,
  cannotWrite = 9,
  noScreen = 10,
  incomplete = 11,
  interruptedBy = 128,  // and the number of the signal, as shells report it
};

// Why a command ended without having done its work; main shows it.
struct Failure : std::runtime_error {
  Failure(int exitCode, const std::string& reason) : std::runtime_error(reason), code(exitCode) {}
  int code;  // an ExitCode
};

using Work = std::function<void(const NVSupportModule&)>;  // throws Failure

void AddSearch(CLI::App& app, Work& chosen);
void AddDownload(CLI::App& app, Work& chosen);
void AddRead(CLI::App& app, Work& chosen);
void AddWhoAmI(CLI::App& app, Work& chosen);
void AddToken(CLI::App& app, Work& chosen);
void AddGui(CLI::App& app, Work& chosen);

}  // namespace nvhost

#endif
