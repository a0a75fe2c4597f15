// The command line of nvhost.
#ifndef NVHOST_COMMAND_LINE_H
#define NVHOST_COMMAND_LINE_H

#include <functional>
#include <string>

#include "commands.h"

namespace nvhost {

// What a command line asks for. Without `work` there is nothing left to do, and the program ends with `exitCode`.
struct Request {
  std::string library;  // path of the module
  bool trace = false;
  std::function<void(const NVSupportModule&)> work;  // throws Failure
  int exitCode = done;
};

// Throws Failure for an area out of range.
Request ReadCommandLine(int argc, char** argv);

}  // namespace nvhost

#endif
