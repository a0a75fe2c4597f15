#include "local_service.h"

#include <gtest/gtest.h>

#include <regex>

#include "support/run_program.h"

using nvsupport::testing::RunProgram;

LocalService::LocalService() {
  const auto started = RunProgram({NV_SERVICE_SCRIPT, "start", folder.path.string()});
  EXPECT_EQ(started.exitCode, 0);
  const std::regex setting("export ([A-Z_]+)='([^']*)'\n");
  for (std::sregex_iterator found(started.output.begin(), started.output.end(), setting), end; found != end; ++found) {
    environment.push_back(std::make_unique<nvsupport::testing::ScopedVariable>(found->str(1), found->str(2)));
  }
}

LocalService::~LocalService() {
  EXPECT_EQ(RunProgram({NV_SERVICE_SCRIPT, "stop", folder.path.string()}).exitCode, 0);
}
