// Memory that runs out at every place where it can: each road is gone with the first request for memory refused, then
// with the second, and so on up to its end; and again with that request and all behind it. Nothing ends the host, what
// is left behind is whole, and a host that has memory again goes on.
#include <new>

#include "account/account_fixture.h"
#include "mapshop/map_shop_reply.h"
#include "memory_shortage.h"
#include "nvsupport/nvsupport.h"

namespace nvsupport {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class ShortOfMemory : public AccountTest {};

TEST_F(ShortOfMemory, ASearchGivesWhatCame) {
  const ScriptedServer shop(HttpReply(200, ReplyWith({{"A", 1, "N", "a.map", 2}, {"B", 1, "N", "b.nvpkg", 2}}, 7)),
                            NV_SERVICE_HOST);
  int items = 0;
  GoShortOfMemory([&] {
    const NVMapShopHandle results = NSMapShopSearch(nullptr, 0);
    MapShopItem item;
    for (items = 0; NSMapShopGetNext(results, &item); ++items) {
    }
    NSMapShopClose(results);
  });
  EXPECT_EQ(items, 2);
}

TEST_F(ShortOfMemory, ADownloadIsWholeOrLeavesNothing) {
  const ScriptedServer web(HttpReply(200, std::string(10'000, 'x')));
  const std::string file = home.folder / "map";
  bool done = false;
  GoShortOfMemory([&] { done = x77fc64c7("web.example", "/", file.c_str(), nullptr, nullptr); },
                  [&] {
                    EXPECT_EQ(fs::exists(file) ? fs::file_size(file) : 0, done ? 10'000 : 0);
                    EXPECT_FALSE(fs::exists(file + ".TMP"));
                    fs::remove(file);
                  });
  EXPECT_TRUE(done);
}

TEST_F(ShortOfMemory, ARangedReadIsWholeOrFails) {
  const ScriptedServer web(HttpReply(206, "abc"));
  char part[4] = "";
  std::int32_t got = 0;
  GoShortOfMemory([&] { got = xfa704a3f("web.example", "/", 0, 3, part, nullptr, nullptr); });
  EXPECT_EQ(got, 3);
}

TEST_F(ShortOfMemory, ATokenIsWholeOrThereIsNone) {
  Serve({Int(0) + Text("token")});
  OpenSession({"ann", "secret1"});
  char token[20] = "";
  bool done = false;
  GoShortOfMemory([&] { done = xff99a5e4(nullptr, token); }, [&] { EXPECT_STREQ(token, done ? "token" : ""); });
  EXPECT_TRUE(done);
}

TEST_F(ShortOfMemory, ASessionOpensAndSavesWhatItCan) {
  OpenSession({"ann", "secret1"});
  GoShortOfMemory([&] {
    x3e491215("Test Product");
    if (g_serviceManager == nullptr) return;
    x0d83f18d();
    try {
      g_serviceManager->SaveProfile();
    } catch (const std::bad_alloc&) {
    }
  });
  EXPECT_STREQ(x0d83f18d(), "ann");
}

TEST_F(ShortOfMemory, ADialogGoesWithItsWindowsAndRecords) {
  char token[20] = "";
  std::size_t told = 0;
  const Steps steps = FillSignIn("Ann", "Secret 1") +
                      Steps{Clicks(IDOK), Clicks(IDC_CREATE_ACCOUNT), Clicks(IDCANCEL), Clicks(IDCANCEL)};
  const auto prepare = [&] {
    told = person.boxes.size();
    OpenSession();  // the one before may know a password by now
    person.steps.assign(steps.begin(), steps.end());
    person.boxes.clear();
    person.boxOwners.clear();
  };
  prepare();
  GoShortOfMemory([&] { EXPECT_FALSE(xff99a5e4(nullptr, token)); }, prepare);
  EXPECT_EQ(told, 1u) << "with memory the dialog opens, and tells that nobody answers";
  person.steps.clear();
}

}  // namespace
}  // namespace nvsupport
