// The commands of nvhost. Each adds itself to the command line; the one that the user asks for puts its work, with the
// arguments in it, into `chosen`, and main runs that once the support library is loaded.
#ifndef NVHOST_COMMANDS_H
#define NVHOST_COMMANDS_H

#include <CLI/CLI.hpp>

#include <functional>
#include <stdexcept>
#include <string>

#include "nvsupport_module.h"

namespace nvhost {

enum ExitCode {
  kDone = 0,
  kUnexpected = 1,
  kWrongArguments = 2,
  kNoModule = 3,
  kAreaOutOfRange = 4,
  kNoProducts = 5,
  kNoAnswer = 6,
  kTransferFailed = 7,
  kNoToken = 8,
  kCannotWrite = 9,
  kNoScreen = 10,
  kInterrupted = 130,  // as shells report Ctrl-C
};

// Why a command ended without having done its work; main shows it.
struct Failure : std::runtime_error {
  Failure(ExitCode exitCode, const std::string& reason) : std::runtime_error(reason), code(exitCode) {}
  ExitCode code;
};

using Work = std::function<void(const NvSupport&)>;  // throws Failure

void AddSearch(CLI::App& app, Work& chosen);
void AddDownload(CLI::App& app, Work& chosen);
void AddRead(CLI::App& app, Work& chosen);
void AddWhoAmI(CLI::App& app, Work& chosen);
void AddToken(CLI::App& app, Work& chosen);
void AddGui(CLI::App& app, Work& chosen);

}  // namespace nvhost

#endif
