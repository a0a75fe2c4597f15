// The module as a host has it: the file that the build made, loaded into a process of its own.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sstream>
#include <string>

#include "mapshop/map_shop_reply.h"
#include "support/run_program.h"
#include "support/scripted_server.h"
#include "support/temporary_home.h"

namespace nvsupport::testing {
namespace {

class Module : public ::testing::Test {
 protected:
  // A job of module_host.c.
  static ProgramResult RunHost(const std::string& job, int rounds = 0) {
    return RunProgram({NV_MODULE_HOST, NV_MODULE, job, std::to_string(rounds)});
  }

  TemporaryHome home;
};

// With a map shop that offers one product.
class ModuleOnline : public Module {
 protected:
  const ScriptedServer server{HttpReply(200, ReplyWith({{"Norrland", 1, "N", "n.nvpkg", -2}}, 7)), NV_SERVICE_HOST};
};

TEST_F(Module, ShowsTheTenExportsAndNothingElse) {
  const std::set<std::string> exports = {
      "x3e491215",       "x0d83f18d",        "x2ed7465a",      "xff99a5e4",
      "NSMapShopSearch", "NSMapShopGetNext", "NSMapShopClose", "NSDownloadWebFileProgress",
      "x77fc64c7",       "xfa704a3f"};
  const ProgramResult nm = RunProgram({"nm", "-D", "--defined-only", "--format=just-symbols", NV_MODULE});
  ASSERT_EQ(nm.exitCode, 0);
  std::istringstream lines(nm.output);
  std::set<std::string> defined;
  for (std::string name; lines >> name;) defined.insert(name);
  EXPECT_EQ(defined, exports);
}

TEST_F(Module, SetsNothingToWorkAtLoadAndLeavesAtUnload) {
  const ProgramResult result = RunHost("load");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, "threads 0 files 0 web client starts 0\nunloaded\n");
  for (const auto& entry : std::filesystem::recursive_directory_iterator(home.folder.path)) {
    EXPECT_TRUE(entry.is_directory()) << entry.path() << " is left behind";
  }
}

// Memory of a thread's own that is made at its first touch would be asked for when the error to keep is the lack of it.
TEST_F(Module, NeedsNoMemoryToKeepAnError) {
  const ProgramResult nm = RunProgram({"nm", "-D", "--undefined-only", "--format=just-symbols", NV_MODULE});
  ASSERT_EQ(nm.exitCode, 0);
  EXPECT_EQ(nm.output.find("__tls_get_addr"), std::string::npos);
}

TEST_F(ModuleOnline, ServesAHostInCThatHasTheNameOfAnExportAndNeverUnloads) {
  const ProgramResult result = RunHost("use-and-exit");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, "") << "of a function of the host's own";
}

TEST_F(ModuleOnline, HoldsNothingMoreAfterManyLoadsInUse) {
  const ProgramResult result = RunHost("cycle", 100);
  ASSERT_EQ(result.exitCode, 0) << result.output;
  long files = -1, threads = -1, mappings = -1, pages = -1;
  std::istringstream(result.output) >> files >> threads >> mappings >> pages;
  EXPECT_EQ(files, 0);
  EXPECT_EQ(threads, 0);
  if (NV_SANITIZED) return;  // a sanitizer keeps books about every load, and finds leaks by itself
  EXPECT_LE(mappings, 4) << "the allocator may take some";
  EXPECT_LE(pages, 256) << "1 MiB";
}

}  // namespace
}  // namespace nvsupport::testing
