#include "cgi_program.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "support/run_program.h"
#include "support/temporary_home.h"

using namespace nvsupport::testing;

CgiReply RunCgi(const std::string& program, const std::vector<std::string>& environment, const std::string& body) {
  const TemporaryFolder folder;
  WriteWholeFile(folder / "body", body);
  std::vector<std::string> command = {"sh", "-c", R"(cd "$0"; exec env -i "$@" <body 2>log)", folder / ""};
  command.insert(command.end(), environment.begin(), environment.end());
  command.push_back(NV_CGI_BIN "/" + program);
  const ProgramResult result = RunProgram(command);
  const std::string log = ReadWholeFile(folder / "log");
  EXPECT_EQ(result.exitCode, 0) << log;

  const std::string& reply = result.output;
  const std::size_t headEnd = reply.find("\r\n\r\n");
  if (!reply.starts_with("Status: ") || headEnd == std::string::npos) {
    ADD_FAILURE() << "no CGI reply: " << reply;
    return {};
  }
  return {std::atoi(reply.c_str() + std::string("Status: ").size()), reply.substr(headEnd + 4), log};
}

CgiReply Post(const std::string& program, const std::string& database, const std::string& body) {
  return RunCgi(program,
                {"REQUEST_METHOD=POST", "HTTPS=on", "CONTENT_LENGTH=" + std::to_string(body.size()),
                 "NV_SERVICE_DATABASE=" + database, std::string("NV_SERVICE_PRODUCTS=") + NV_PRODUCTS},
                body);
}
