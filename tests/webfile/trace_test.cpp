// The trace: what it tells, and that it keeps the user's secrets.
#include <gtest/gtest.h>

#include <string>

#include "core/service_manager.h"
#include "support/run_program.h"
#include "support/temporary_home.h"
#include "support/test_authority.h"
#include "support/wire_items.h"

namespace nvsupport::testing {
namespace {

// A session whose user and password are saved.
class SavedSession final : public CVServiceManager {
 public:
  SavedSession() : CVServiceManager("P", 1, 2) {
    m_userId = "secret-user";
    m_password = "secretpassword";
    m_savePassword = true;
    SaveProfile();
  }
  std::string GetDeviceName() override { return {}; }
};

TEST(Trace, TellsWhatHappenedButNoSecret) {
  const TemporaryHome home;
  home.WriteUserRegistry("[HKEY_CURRENT_USER\\Software\\Norvane]\n\"Language\"=\"Klingon\"\n");
  const SavedSession session;
  const ScopedVariable route("NV_CONNECT_TO", "nonsense");
  const TestAuthority authority;
  const ScriptedServer service(HttpReply(200, Int(0) + Text("secret-token")), NV_SERVICE_HOST,
                               authority.Issue(NV_SERVICE_HOST));
  const ScriptedServer web(HttpReply(200, "secret body"));
  const auto traceOf = [](const std::string& arguments) {
    return RunProgram({"sh", "-c", "exec " NV_HOST " " + arguments + " 2>&1 >/dev/null"}).output;
  };
  EXPECT_EQ(traceOf("token --product P"), "");
  const ScopedVariable areas("NV_TRACE", "web,files,display,language,registry");
  const std::string trace =
      traceOf("token --product P") + traceOf("download web.example a.map?secret=1 " + (home.folder / "a.map"));
  for (const std::string told :
       {"web POST https://" NV_SERVICE_HOST "/cgi-bin/svcapp.cgi\n", "web status 200 after ",
        "web 32 bytes of the body after ", "web GET http://web.example/a.map\n", "\"nonsense\" is malformed\n",
        "/norvane/registry.reg\n", " = \"Klingon\"\n", "nvsupport.Klingon.txt", "files read ", "settings.ini\n",
        "files create ", "a.map.TMP\n"}) {
    EXPECT_NE(trace.find(told), std::string::npos) << told;
  }
  EXPECT_EQ(trace.find("secret"), std::string::npos) << trace;
  EXPECT_EQ(service.Requests().size(), 2u);
}

}  // namespace
}  // namespace nvsupport::testing
