// The example host on the command line: what it prints, and its exit code for each way to end.
#include <gtest/gtest.h>
#include <nvsupport/nvsupport.h>

#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "display/process.h"
#include "service/local_service.h"
#include "support/routed_server.h"
#include "support/run_program.h"

namespace nvsupport::testing {
namespace {

const std::string serviceHost = "service.norvane.example";

// The host by the shell: arguments behind its name.
ProgramResult RunHost(const std::string& arguments) {
  return RunProgram({"sh", "-c", NV_HOST " " + arguments});
}

TEST(ExampleHost, ShowsWhatTheServiceOffers) {
  const LocalService service;
  const std::string table = RunHost("search 38,-28 39,-27").output;
  EXPECT_NE(table.find("Açores  Topographic 1:50 000  files/maps/acores.nvmap"), std::string::npos) << table;

  const nlohmann::json results = nlohmann::json::parse(RunHost("search --json 45.8,6.8 46.0,7.0").output);
  ASSERT_EQ(results["items"].size(), 2U);
  EXPECT_EQ(results["items"][0]["package"], false);
  EXPECT_EQ(results["items"][1]["package"], true);
  EXPECT_EQ(results["items"][1]["firstValue"], 112);
  EXPECT_EQ(results["closingValue"], 38);

  const std::string path = "/files/maps/fiji.nvmap";
  const std::string file = service.Path("fiji.nvmap");
  EXPECT_EQ(RunHost("download " + serviceHost + " " + path + " " + file).exitCode, 0);
  const std::string served = ReadWholeFile(service.Path("www" + path));
  EXPECT_EQ(ReadWholeFile(file), served);
  EXPECT_EQ(RunHost("read " + serviceHost + " " + path + " 7 1000").output, served.substr(7, 1000));
}

TEST(MinimalHost, IsTheOneOfTheReadmeAndSaysWhenThereIsNothing) {
  const std::string source = ReadWholeFile(NV_SOURCE_FOLDER "/examples/minimal/minimal.c");
  EXPECT_NE(ReadWholeFile(NV_SOURCE_FOLDER "/README.md").find("```c\n" + source + "```\n"), std::string::npos);
  const LocalService service;
  EXPECT_EQ(RunProgram({NV_MINIMAL_HOST}).output,
            "Chamonix and Mont Blanc: files/maps/chamonix.nvmap\nPackage: The Alps: files/packages/alps.nvpkg\n");
  const ScopedVariable nowhere("NV_CONNECT_TO", serviceHost + ":80:127.0.0.1:1");
  EXPECT_EQ(RunProgram({NV_MINIMAL_HOST}).output,
            "There are no products for this area, or the map shop is out of reach.\n");
}

TEST(ExampleHost, TellsFailuresApartByItsExitCode) {
  const LocalService service;
  const struct {
    std::string command;
    int exitCode;
    const char* message;
  } cases[] = {
      {"--version", 0, "nvhost " NVSUPPORT_VERSION},
      {"", 2, "subcommand"},
      {"serach 45,6", 2, "no command serach"},
      {"search here", 2, "LATITUDE,LONGITUDE"},
      {"--library /nowhere/nvsupport.so whoami --product P", 3, "/nowhere/nvsupport.so"},
      {"--library " NV_NO_MODULE " whoami --product P", 3, "lacks the function x3e491215"},
      {"search 90.1,0", 4, "out of range"},
      {"search 0,-30", 5, "no products for this area"},
      {"search 0,-30 --trace", 5, " web POST http://service.norvane.example/cgi-bin/mapstore2.cgi"},
      {"download " + serviceHost + " /files/none " + service.Path("none"), 7, "cannot be reached or does not give"},
      {"read " + serviceHost + " /files/maps/fiji.nvmap 99999999 10", 7, "does not give these bytes"},
      {"read " + serviceHost + " /files/maps/fiji.nvmap 294900 100", 7, "before all bytes were there"},
      {"gui", 10, "no screen"},
  };
  for (const auto& row : cases) {
    const ProgramResult result = RunHost(row.command + " 2>&1");
    EXPECT_EQ(result.exitCode, row.exitCode) << row.command;
    EXPECT_NE(result.output.find(row.message), std::string::npos) << row.command << ": " << result.output;
  }
  const ScopedVariable nowhere("NV_CONNECT_TO", serviceHost + ":80:127.0.0.1:1");
  EXPECT_EQ(RunHost("search 2>/dev/null").exitCode, 6);
  const ScopedVariable noServer("DISPLAY", ":65000");
  EXPECT_EQ(RunHost("gui 2>/dev/null").exitCode, 10);
}

// A reply that promises a million bytes and ends, or falls silent, behind the first five.
Reply FiveOfAMillion(Reply::End end) {
  return {.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n12345", .end = end};
}

TEST(ExampleHost, TakesAPartForNoFile) {
  const TemporaryFolder folder;
  const RoutedServer server(FiveOfAMillion(Reply::End::close));
  const std::string file = folder / "file";
  const ProgramResult result = RunHost("download " + std::string(serverName) + " /f " + file + " 2>&1");
  EXPECT_EQ(result.exitCode, 11);
  EXPECT_NE(result.output.find("incomplete: 5 of 1,000,000 bytes"), std::string::npos) << result.output;
  EXPECT_TRUE(std::filesystem::is_empty(folder.path));
}

TEST(ExampleHost, StopsAtOnceAndLeavesNothingWhileAServerIsSilent) {
  const struct {
    const char* name;
    Reply reply;
    int signal;
    int exitCode;
  } cases[] = {
      {"no head, Ctrl-C", {.bytes = "", .end = Reply::End::hold}, SIGINT, 130},
      {"a part of the body, Ctrl-C", FiveOfAMillion(Reply::End::hold), SIGINT, 130},
      {"a part of the body, SIGTERM", FiveOfAMillion(Reply::End::hold), SIGTERM, 143},
  };
  for (const auto& row : cases) {
    const TemporaryFolder folder;
    const RoutedServer server(row.reply);
    Process host({NV_HOST, "download", serverName, "/f", folder / "file"});
    EXPECT_TRUE(WaitUntil([&] {
      return row.reply.bytes.empty() ? !server.Requests().empty() : std::filesystem::exists(folder / "file.TMP");
    })) << row.name;
    const auto asked = std::chrono::steady_clock::now();
    host.Signal(row.signal);
    EXPECT_EQ(host.Join(), row.exitCode) << row.name;
    EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::seconds(20)) << row.name;
    EXPECT_TRUE(std::filesystem::is_empty(folder.path)) << row.name;
  }
}

}  // namespace
}  // namespace nvsupport::testing
