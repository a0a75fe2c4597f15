// The example host on the command line: what it prints, and its exit code for each way to end.
#include <gtest/gtest.h>
#include <nvsupport/nvsupport.h>

#include <csignal>
#include <filesystem>
#include <sstream>
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
      {"whoami --json --product P", 0, "{\n  \"userId\": \"\",\n  \"deviceId\": "},
      {"", 2, "nvhost: A subcommand"},
      {"serach 45,6", 2, "nvhost: there is no command serach"},
      {"--jsn", 2, "nvhost: there is no option --jsn"},
      {"search 45,6 --jsn", 2, "nvhost: The following argument was not expected: --jsn"},
      {"download http://host /f f", 2, "\"http://host\" is no name of a server"},
      {"read host:80 /f 0 1", 2, "\"host:80\" is no name of a server"},
      {"download " + fiji + "/tmp", 2, "/tmp is a folder"},
      {"download " + fiji + "/no/file", 2, "there is no folder /no"},
      {"search 45,6x", 2, "LATITUDE,LONGITUDE"},
      {"--library /nowhere/nvsupport.so whoami --product P", 3, "/nowhere/nvsupport.so"},
      {"--library \"" NV_NO_MODULE "\" whoami --product P", 3, "lacks the function x3e491215"},
      {"search 90.1,0", 4, "out of range"},
      {"search 0,400.1", 4, "out of range"},
      {"search 0,-30 --trace", 5, " web POST http://service.norvane.example/cgi-bin/mapstore2.cgi"},
      {"download " + serviceHost + " /files/none " + file, 7, "cannot be reached or does not give"},
      {"read " + fiji + "99999999 10", 7, "does not give these bytes of /files/maps/fiji.nvmap; --trace tells"},
      {"read " + fiji + "294900 100", 7, "before all bytes were there"},
      {"gui", 10, "no screen"},
      {"token --product P", 10, "no screen"},
  };
  for (const auto& row : cases) {
    const ProgramResult result = RunHost(row.command + " 2>&1");
    EXPECT_EQ(result.exitCode, row.exitCode) << row.command;
    EXPECT_NE(result.output.find(row.output), std::string::npos) << row.command << ": " << result.output;
  }
  const std::string served = ReadWholeFile(service.Path("www/files/maps/fiji.nvmap"));
  EXPECT_EQ(ReadWholeFile(file), served);
  EXPECT_EQ(RunHost("read " + fiji + "7 1000").output, served.substr(7, 1000));
  EXPECT_EQ(RunHost("download " + fiji + "- 2>/dev/null").output, served);
  const std::string outputs[] = {"--version", "search --help", "read " + fiji + "7 10", "download " + fiji + "-"};
  for (const std::string& command : outputs) {
    EXPECT_EQ(RunHost(command + " 2>/dev/null >/dev/full").exitCode, 9) << command;
  }
  EXPECT_EQ(RunHost("search --help").output.find("Exit codes"), std::string::npos) << "which nvhost --help tells";

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

TEST(ExampleHost, ShowsItsProgressAsWideAsTheTerminal) {
  const ScriptedServer server(
      Reply{.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 99999\r\n\r\n12345", .end = Reply::End::hold});
  const TemporaryFolder folder;
  const std::string host = std::string(NV_HOST) + " download " + serverName + " /f " + (folder / "file");
  const ProgramResult shown =
      RunProgram({"script", "-qec", "stty cols 30; timeout --foreground -s INT 3 " + host, "/dev/null"});
  EXPECT_NE(shown.output.find("bytes of 97.7 KiB"), std::string::npos) << shown.output;
  std::istringstream lines(shown.output);
  const std::string clearLine = "\x1b[K";
  for (std::string line; std::getline(lines, line, '\r');) {
    if (line.find('%') == std::string::npos) continue;
    EXPECT_LT(line.size(), clearLine.size() + 30) << line;
  }
}

TEST(ExampleHost, IsCompletedByTheShell) {
  const std::string tools = NV_SOURCE_FOLDER "/tools/completion/nvsupport.bash";
  const auto completed = [&](const std::string& line) {  // the last word of a line
    return RunProgram({"bash", "-c",
                       "source \"$0\"; COMP_WORDS=(nvhost " + line +
                           "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _nvsupport_complete \"$1\" "
                           "\"${COMP_WORDS[-1]}\"; echo ${COMPREPLY[@]}",
                       tools, NV_HOST})
        .output;
  };
  EXPECT_EQ(completed("se"), "search\n");
  EXPECT_EQ(completed("search --j"), "--json\n");
  EXPECT_EQ(completed("--trace download --"), "--help\n");
}

}  // namespace
}  // namespace nvsupport::testing
