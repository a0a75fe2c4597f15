#include "local_service.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/run_program.h"

using nvsupport::testing::RunProgram;

LocalService::LocalService() {
  constexpr std::string_view prefix = "export ";
  const auto started = RunProgram({NV_SERVICE_SCRIPT, "start", folder.path.string()});
  EXPECT_EQ(started.exitCode, 0);
  // Lines such as "export NAME='value'".
  std::istringstream lines(started.output);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t equals = line.find("='");
    if (!line.starts_with(prefix) || equals == std::string::npos || !line.ends_with('\'')) {
      ADD_FAILURE() << "unexpected line: " << line;
      continue;
    }
    environment.push_back(std::make_unique<nvsupport::testing::ScopedVariable>(
        line.substr(prefix.size(), equals - prefix.size()), line.substr(equals + 2, line.size() - equals - 3)));
  }
}

LocalService::~LocalService() {
  EXPECT_EQ(RunProgram({NV_SERVICE_SCRIPT, "stop", folder.path.string()}).exitCode, 0);
}
