#include "local_service.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <sstream>

CommandResult RunCommand(const std::string& command) {
  CommandResult result;
  FILE* const pipe = popen(command.c_str(), "re");
  if (!pipe) return result;
  std::array<char, 4096> chunk;
  for (std::size_t size; (size = std::fread(chunk.data(), 1, chunk.size(), pipe)) > 0;) {
    result.output.append(chunk.data(), size);
  }
  const int status = pclose(pipe);
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

LocalService::LocalService() {
  constexpr std::string_view kExport = "export ";
  const CommandResult started = RunCommand(NV_SERVICE_SCRIPT " start '" + folder.path.string() + "'");
  EXPECT_EQ(started.exitCode, 0);
  // Lines such as "export NAME='value'".
  std::istringstream lines(started.output);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t equals = line.find("='");
    if (!line.starts_with(kExport) || equals == std::string::npos || !line.ends_with('\'')) {
      ADD_FAILURE() << "unexpected line: " << line;
      continue;
    }
    environment.push_back(std::make_unique<nvsupport::testing::ScopedVariable>(
        line.substr(kExport.size(), equals - kExport.size()), line.substr(equals + 2, line.size() - equals - 3)));
  }
}

LocalService::~LocalService() {
  EXPECT_EQ(RunCommand(NV_SERVICE_SCRIPT " stop '" + folder.path.string() + "'").exitCode, 0);
}
