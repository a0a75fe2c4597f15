// Runs a program to its end in a process of its own.
#ifndef NVSUPPORT_TESTS_SUPPORT_RUN_PROGRAM_H
#define NVSUPPORT_TESTS_SUPPORT_RUN_PROGRAM_H

#include <sys/wait.h>

#include <cstdio>
#include <string>
#include <vector>

namespace nvsupport::testing {

struct ProgramResult {
  int exitCode = -1;  // -1: ended by a signal
  std::string output;
};

// The program and its arguments. Standard output is collected; the rest is inherited.
inline ProgramResult RunProgram(const std::vector<std::string>& command) {
  std::string line = "exec";
  for (const std::string& argument : command) line += " '" + argument + "'";
  ProgramResult result;
  std::FILE* const pipe = popen(line.c_str(), "r");
  char buffer[4096];
  for (std::size_t length; (length = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
    result.output.append(buffer, length);
  }
  const int status = pclose(pipe);
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  return result;
}

}  // namespace nvsupport::testing

#endif
