// The example host on the command line: what it prints, and its exit code for each way to end.
#include <gtest/gtest.h>
#include <nvsupport/nvsupport.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "service/local_service.h"
#include "support/run_program.h"
#include "support/scripted_server.h"

namespace nvsupport::testing {
namespace {

const std::string serviceHost = "service.norvane.example";

// The host by the shell: arguments behind its name.
ProgramResult RunHost(const std::string& arguments) {
  return RunProgram({"sh", "-c", "exec \"$0\" " + arguments, NV_HOST});
}

TEST(ExampleHost, ShowsWhatTheServiceOffersAndTellsFailuresApartByItsExitCode) {
  const LocalService service;
  const std::string file = service.Path("fiji");
  const std::string fiji = serviceHost + " /files/maps/fiji.nvmap ";
  const struct {
    std::string command;
    int exitCode;
    const char* output;
  } cases[] = {
      {"--version", 0, "nvhost " NVSUPPORT_VERSION},
      {"search 38,-28 39,-27", 0, "Açores  Topographic 1:50 000  files/maps/acores.nvmap"},
      {"search --json 46,7", 0, "\"package\": true,\n      \"title\": \"Package: The Alps\",\n"},
      {"search --json 46,7", 0, "\"secondValue\": 20480\n    }\n  ],\n  \"closingValue\": 38\n}"},
      {"download " + fiji + file, 0, "fiji: "},
      {"", 2, "subcommand"},
      {"serach 45,6", 2, "no command serach"},
      {"search 45,6x", 2, "LATITUDE,LONGITUDE"},
      {"--library /nowhere/nvsupport.so whoami --product P", 3, "/nowhere/nvsupport.so"},
      {"--library \"" NV_NO_MODULE "\" whoami --product P", 3, "lacks the function x3e491215"},
      {"search 90.1,0", 4, "out of range"},
      {"search 0,400.1", 4, "out of range"},
      {"search 0,-30 --trace", 5, " web POST http://service.norvane.example/cgi-bin/mapstore2.cgi"},
      {"download " + serviceHost + " /files/none " + file, 7, "cannot be reached or does not give"},
      {"read " + fiji + "99999999 10", 7, "does not give these bytes"},
      {"read " + fiji + "294900 100", 7, "before all bytes were there"},
      {"gui", 10, "no screen"},
  };
  for (const auto& row : cases) {
    const ProgramResult result = RunHost(row.command + " 2>&1");
    EXPECT_EQ(result.exitCode, row.exitCode) << row.command;
    EXPECT_NE(result.output.find(row.output), std::string::npos) << row.command << ": " << result.output;
  }
  const std::string served = ReadWholeFile(service.Path("www/files/maps/fiji.nvmap"));
  EXPECT_EQ(ReadWholeFile(file), served);
  EXPECT_EQ(RunHost("read " + fiji + "7 1000").output, served.substr(7, 1000));
  EXPECT_EQ(RunHost("read " + fiji + "7 10 2>/dev/null >/dev/full").exitCode, 9);

  const ScopedVariable nowhere("NV_CONNECT_TO", serviceHost + ":80:127.0.0.1:1");
  EXPECT_EQ(RunHost("search 2>/dev/null").exitCode, 6);
}

TEST(ExampleHost, LeavesNothingOfAFileThatIsNotWhole) {
  const std::string part = "HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n12345";
  const TemporaryFolder folder;
  const std::string file = folder / "file";
  const struct {
    const char* what;
    std::string bytes;
    int signal;
    int exitCode;
  } cases[] = {
      {"no head, Ctrl-C", "", SIGINT, 130},
      {"a part of the body, SIGTERM", part, SIGTERM, 143},
  };
  for (const auto& row : cases) {
    const ScriptedServer server(Reply{.bytes = row.bytes, .end = Reply::End::hold});
    Process host({NV_HOST, "download", serverName, "/f", file}, true);
    EXPECT_TRUE(WaitUntil([&] {
      return row.bytes.empty() ? !server.Requests().empty() : std::filesystem::exists(file + ".TMP");
    })) << row.what;
    host.Signal(row.signal);
    std::string last;
    for (std::string line = host.ReadLine(); !line.empty(); line = host.ReadLine()) last = line;
    EXPECT_EQ(last, "nvhost: stopped; nothing was kept") << row.what;
    EXPECT_EQ(host.Join(), row.exitCode) << row.what;
    EXPECT_TRUE(std::filesystem::is_empty(folder.path)) << row.what;
  }
  const ScriptedServer server(Reply{.bytes = part});
  const ProgramResult ended = RunHost(std::string("download ") + serverName + " /f " + file + " 2>&1");
  EXPECT_EQ(ended.exitCode, 11);
  EXPECT_TRUE(ended.output.ends_with("incomplete: 5 of 100,000 bytes; nothing was kept\n")) << ended.output;
  EXPECT_TRUE(std::filesystem::is_empty(folder.path));
}

}  // namespace
}  // namespace nvsupport::testing
