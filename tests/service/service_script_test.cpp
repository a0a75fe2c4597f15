// service.sh holds keys and accounts, and people eval what it prints: it works in no folder that others can reach, and
// prints nothing that a file of it could slip in.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "local_service.h"
#include "support/run_program.h"

namespace {

using namespace nvsupport::testing;

TEST(ServiceScript, RefusesAFolderThatOthersCanReach) {
  const struct {
    const char* what;
    const char* command;  // makes the folder "service"
  } cases[] = {
      {"open to all for reading", "mkdir -m 755 service"},
      {"open to the group", "mkdir -m 770 service"},
      {"open by a link", "mkdir -m 777 open && ln -s open service"},
      {"another's", "mkdir -m 700 service && chown daemon service"},
      {"another's link", "mkdir -m 700 own && ln -s own service && chown -h daemon service"},
  };
  for (const auto& row : cases) {
    const TemporaryFolder folder;
    if (RunProgram({"sh", "-c", "cd \"$0\" && " + std::string(row.command) + " 2>&1", folder / ""}).exitCode != 0) {
      EXPECT_NE(geteuid(), 0U) << row.what << ": only root can give a folder away";
      continue;
    }
    const auto result = RunProgram({"sh", "-c", R"("$0" start "$1" 2>&1)", NV_SERVICE_SCRIPT, folder / "service"});
    EXPECT_EQ(result.exitCode, 1) << row.what << ": " << result.output;
    EXPECT_TRUE(std::filesystem::is_empty(folder / "service")) << row.what;
  }
}

TEST(ServiceScript, PrintsNoCommandOutOfItsFiles) {
  const LocalService service;
  for (const char* ports : {"80 443; touch /tmp/x\n", "80 443\ntouch x\n", ""}) {
    WriteWholeFile(service.Path("ports"), ports);
    const auto result = RunProgram({"sh", "-c", R"("$0" env "$1" 2>&1)", NV_SERVICE_SCRIPT, service.Path("")});
    EXPECT_EQ(result.exitCode, 1) << ports;
    EXPECT_EQ(result.output.find("export"), std::string::npos) << result.output;
  }
}

}  // namespace
