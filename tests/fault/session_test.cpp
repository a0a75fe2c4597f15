// Hosts that call the library while it calls them: out of a running dialog, out of a progress callback.
#include "account/account_fixture.h"
#include "mapshop/map_shop_reply.h"
#include "nvsupport/nvsupport.h"

namespace nvsupport {
namespace {

using namespace testing;

class CallsWithinCalls : public AccountTest {};

TEST_F(CallsWithinCalls, ASessionOutlivesTheDialogThatUsesIt) {
  Serve({Int(0) + Int(0), Int(0) + Text("token")});
  OpenSession();
  char within[20] = "#";
  const Step replaces = [&](HWND) {
    x3e491215("Passing");
    x3e491215("Other");
    EXPECT_FALSE(xff99a5e4(nullptr, within)) << "and no second dialog opens";
  };
  const Steps steps = Steps{replaces} + FillSignIn("Ann", "Secret 1") + Steps{Clicks(IDOK)};
  person.steps.assign(steps.begin(), steps.end());
  char token[20] = "";
  EXPECT_TRUE(xff99a5e4(nullptr, token));
  EXPECT_STREQ(token, "token");
  EXPECT_STREQ(within, "");
  EXPECT_STREQ(x0d83f18d(), "") << "the other product's session is in force";
  EXPECT_EQ(Profile(), "UserID=Ann\n");
  for (const std::string product : {"Passing", "Other"}) {
    EXPECT_EQ(ReadWholeFile(home.folder / ("data/" + product + "-Service/settings.ini")), "") << product;
  }
  person.steps = {Clicks(IDCANCEL)};
  EXPECT_FALSE(xff99a5e4(nullptr, token)) << "the next one asks again";
}

// What a progress callback calls: everything.
struct Host {
  std::string file;
  int calls = 0;
  static bool OnProgress(void* data) {
    auto* const host = static_cast<Host*>(data);
    if (host->calls++ != 0) return true;
    x3e491215("Inner");
    EXPECT_STREQ(x0d83f18d(), "");
    EXPECT_NE(x2ed7465a(), 0u);
    char token[20];
    EXPECT_FALSE(xff99a5e4(nullptr, token));
    const NVMapShopHandle results = NSMapShopSearch(nullptr, 0);
    MapShopItem item;
    EXPECT_TRUE(NSMapShopGetNext(results, &item));
    EXPECT_EQ(NSMapShopClose(results), 7);
    char part[4] = "";
    EXPECT_EQ(xfa704a3f(serverName, "/", 0, 3, part, OnProgress, data), 3);
    EXPECT_TRUE(x77fc64c7(serverName, "/", (host->file + "1").c_str(), OnProgress, data));
    WebProgressCounters counters;
    EXPECT_TRUE(NSDownloadWebFileProgress(serverName, "/", (host->file + "2").c_str(), OnProgress, data, &counters));
    return true;
  }
};

TEST_F(CallsWithinCalls, AProgressCallbackMayCallEveryExport) {
  const std::string body(100'000, 'o');
  const ScriptedServer outer(HttpReply(200, body), "outer.example");
  const ScriptedServer inner(HttpReply(200, "in!"));
  const ScriptedServer shop(HttpReply(200, ReplyWith({{"Norrland", 1, "N", "n.map", -2}}, 7)), NV_SERVICE_HOST);
  person.steps = {Clicks(IDCANCEL)};
  Host host{home.folder / "map"};
  EXPECT_TRUE(x77fc64c7("outer.example", "/", host.file.c_str(), Host::OnProgress, &host));
  EXPECT_TRUE(ReadWholeFile(host.file) == body);
  EXPECT_EQ(ReadWholeFile(host.file + "1") + ReadWholeFile(host.file + "2"), "in!in!");
}

}  // namespace
}  // namespace nvsupport
