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

TEST_F(CallsWithinCalls, AProgressCallbackMayCallEveryExport) {
  const std::string body(100'000, 'o');
  const ScriptedServer outer(HttpReply(200, body), "outer.example");
  const ScriptedServer inner(HttpReply(200, "in!"));
  const ScriptedServer shop(HttpReply(200, ReplyWith({{"Norrland", 1, "N", "n.map", -2}}, 7)), NV_SERVICE_HOST);
  person.steps = {Clicks(IDCANCEL)};
  std::string file = home.folder / "map";
  const auto callsAll = [](void* data) {
    const std::string within = *static_cast<std::string*>(data) + ".within";
    if (std::filesystem::exists(within)) return true;
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
    EXPECT_EQ(xfa704a3f(serverName, "/", 0, 3, part, nullptr, nullptr), 3);
    EXPECT_TRUE(NSDownloadWebFileProgress(serverName, "/", within.c_str(), nullptr, nullptr, nullptr));
    EXPECT_TRUE(x77fc64c7(serverName, "/", within.c_str(), nullptr, nullptr));
    EXPECT_EQ(ReadWholeFile(within), "in!");
    return true;
  };
  EXPECT_TRUE(x77fc64c7("outer.example", "/", file.c_str(), callsAll, &file));
  EXPECT_TRUE(ReadWholeFile(file) == body);
  EXPECT_TRUE(std::filesystem::exists(file + ".within"));
}

}  // namespace
}  // namespace nvsupport
