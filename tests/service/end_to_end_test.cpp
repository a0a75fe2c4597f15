// The library and the example host against the real service behind its real web server.
#include <gtest/gtest.h>
#include <nvsupport/nvsupport.h>

#include <array>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "local_service.h"
#include "resources/resource_ids.h"
#include "support/played_user.h"
#include "support/run_program.h"

namespace {

using nvsupport::testing::ProgramResult;
using nvsupport::testing::ReadWholeFile;
using nvsupport::testing::RunProgram;

const std::string host = "service.norvane.example";

TEST(EndToEnd, AnAccountIsMadeAndNoLogHoldsItsSecrets) {
  const LocalService service;
  const nvsupport::testing::TemporaryHome home;
  PlayedUser person;
  const auto types = &PlayedUser::Types;
  const auto clicks = &PlayedUser::Clicks;
  person.steps = {
      clicks(IDC_CREATE_ACCOUNT),
      types(IDC_USER_ID, "Zo\u00eb Map"),
      types(IDC_PASSWORD, "Secret-7"),
      types(IDC_RETYPE_PASSWORD, "Secret-7"),
      types(IDC_EMAIL, "zoe@maps"),
      clicks(IDOK),
      types(IDC_EMAIL, "zoe@norvane.example"),
      clicks(IDOK),
      clicks(IDOK),
  };
  std::array<char, 20> token = {};
  x3e491215("Product");
  EXPECT_TRUE(xff99a5e4(nullptr, token.data()));
  ASSERT_EQ(person.boxes.size(), 1U);
  EXPECT_EQ(person.boxes[0].text, "You must provide a valid email address.");
  for (const char* log : {"access.log", "error.log", "cgi.log", "lighttpd.log"}) {
    const std::string text = ReadWholeFile(service.Path(std::string("log/") + log));
    for (const auto& secret : std::vector<std::string>{"Secret", token.data()}) {
      EXPECT_EQ(text.find(secret), std::string::npos) << secret << " in " << log;
    }
  }
}

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
  EXPECT_EQ(RunHost("download " + host + " " + path + " " + file).exitCode, 0);
  const std::string served = ReadWholeFile(service.Path("www" + path));
  EXPECT_EQ(ReadWholeFile(file), served);
  EXPECT_EQ(RunHost("read " + host + " " + path + " 7 1000").output, served.substr(7, 1000));
}

TEST(ExampleHost, TellsFailuresApartByItsExitCode) {
  const LocalService service;
  const struct {
    std::string command;
    int exitCode;
    const char* message;
  } cases[] = {
      {"--help", 0, ""},
      {"", 2, "subcommand"},
      {"search here", 2, "LATITUDE,LONGITUDE"},
      {"--library /nowhere/nvsupport.so whoami --product P", 3, "/nowhere/nvsupport.so"},
      {"search 90.1,0", 4, "out of range"},
      {"search 0,-30", 5, "no products for this area"},
      {"download " + host + " /files/none " + service.Path("none"), 7, "cannot be reached or does not give"},
      {"read " + host + " /files/maps/fiji.nvmap 99999999 10", 7, "does not give these bytes"},
      {"read " + host + " /files/maps/fiji.nvmap 294900 100", 7, "before all bytes were there"},
      {"gui", 10, "no screen"},
  };
  for (const auto& row : cases) {
    const ProgramResult result = RunHost(row.command + " 2>&1");
    EXPECT_EQ(result.exitCode, row.exitCode) << row.command;
    EXPECT_NE(result.output.find(row.message), std::string::npos) << row.command << ": " << result.output;
  }
  const nvsupport::testing::ScopedVariable nowhere("NV_CONNECT_TO", host + ":80:127.0.0.1:1");
  EXPECT_EQ(RunHost("search 2>/dev/null").exitCode, 6);
}

}  // namespace
