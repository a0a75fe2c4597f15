// The trace: what it tells, and that it keeps the user's secrets.
#include <vector>

#include "account/account_fixture.h"
#include "support/run_program.h"

namespace nvsupport::testing {
namespace {

class Trace : public AccountTest {};

TEST_F(Trace, TellsWhatHappenedButNoSecret) {
  OpenSession({"secret-user", "secretpassword"});
  home.WriteUserRegistry("[HKEY_CURRENT_USER\\Software\\Norvane]\n\"Language\"=\"Klingon\"\n");
  const std::string shown = "nonsense ~\u00e9\u00a0\u2027\u202f\u2065\u206a\ud7ff\ue000\U0010ffff";
  const std::string hidden = "\x7F\x9B\xC2\x9B\xC3\x1B\u2028\u202e\u2066\u2069\xED\xA0\x80\xED\xBF\xBF\xE0\x9F\xBF";
  const ScopedVariable route("NV_CONNECT_TO", shown + hidden + "\xF4\x90\x80\x80");
  Serve({Int(0) + Text("secret-token")});
  const ScriptedServer web(HttpReply(200, "secret body"));
  const auto traceOf = [](const std::string& arguments) {
    return RunProgram({"sh", "-c", "exec \"$0\" " + arguments + " 2>&1 >/dev/null", NV_HOST}).output;
  };
  const std::string token = "token --product \"Test Product\"";
  EXPECT_EQ(traceOf(token), "");
  const ScopedVariable areas("NV_TRACE", "web,files,display,language,registry");
  WriteWholeFile(home.folder / "data/Large-Service/settings.ini", std::string((1 << 20) + 1, '#'));
  std::string trace = traceOf(token) + traceOf("whoami --product Large") +
                      traceOf("download web.example a.map?secret=1 " + (home.folder / "a.map"));
  for (const std::string& told : std::vector<std::string>{
           "web POST https://" + std::string(NV_SERVICE_HOST) + "/cgi-bin/svcapp.cgi\n", "web status 200 after ",
           "web 32 bytes of the body after ", ": whole\n", "registry key ", "web GET http://web.example/a.map\n",
           '"' + shown + std::string(hidden.size() + 4, '?') + "\" is malformed\n", "/norvane/registry.reg\n",
           " = \"Klingon\"\n", "nvsupport.Klingon.txt", "files read ", "settings.ini\n",
           "/Large-Service/settings.ini: more than 1048576 bytes\n", "files create ", "a.map.TMP\n"}) {
    EXPECT_NE(trace.find(told), std::string::npos) << told;
  }
  const ScopedVariable noExceptions("no_proxy", "");
  for (const std::string proxy : {"secret:secret word@proxy:80", "x://secret:secret@proxy"}) {
    const ScopedVariable used("http_proxy", proxy);
    trace += traceOf("download web.example a.map " + (home.folder / "a.map"));
  }
  EXPECT_EQ(trace.find("secret"), std::string::npos) << trace;
  EXPECT_EQ(Requests().size(), 2u);
}

}  // namespace
}  // namespace nvsupport::testing
