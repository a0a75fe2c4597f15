// Memory that runs out at every place where it can: each road is gone with the first request for memory refused, then
// with the second, and so on up to its end; and again with that request and all behind it. Nothing ends the host, what
// is left behind is whole, and a host that has memory again goes on.
#include <curl/curl.h>
#include <dlfcn.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>

#include "account/account_fixture.h"
#include "mapshop/map_shop_reply.h"
#include "nvsupport/nvsupport.h"

namespace {

thread_local long requests = 0;             // for memory, of C++ and of libcurl, so far
thread_local long firstRefused = LONG_MAX;  // its number
thread_local bool shortageLasts = false;

bool IsRefused() {
  const long number = requests++;
  return shortageLasts ? number >= firstRefused : number == firstRefused;
}

void* Take(std::size_t size) {
  return IsRefused() ? nullptr : std::malloc(size);
}

// Before the library is the first to use it.
[[maybe_unused]] const CURLcode ready = curl_global_init_mem(
    CURL_GLOBAL_DEFAULT, Take, std::free,
    [](void* memory, std::size_t size) { return IsRefused() ? nullptr : std::realloc(memory, size); },
    [](const char* text) { return IsRefused() ? nullptr : strdup(text); },
    [](std::size_t count, std::size_t size) { return IsRefused() ? nullptr : std::calloc(count, size); });

}  // namespace

void* operator new(std::size_t size) {
  if (void* const memory = Take(size)) return memory;
  throw std::bad_alloc();
}
// A sanitizer has this form, too, and the one that gives back, which it must let take what is here from malloc.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Take(size);
}
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
  return "alloc_dealloc_mismatch=0";
}

namespace nvsupport {
namespace {

using namespace testing;
namespace fs = std::filesystem;

// An exception that leaves the road ends the program, as it would the host. Looks after each time.
void GoShortOfMemory(const std::function<void()>& road, const std::function<void()>& look = [] {}) {
  for (const bool lasting : {false, true}) {
    shortageLasts = lasting;
    long place = 0;
    for (bool came = true; came; ++place) {
      requests = 0;
      firstRefused = place;
      [&]() noexcept { road(); }();
      came = requests > place;
      firstRefused = LONG_MAX;
      look();
      if (::testing::Test::HasFailure()) return;
    }
    EXPECT_GT(place, 1) << "nothing was refused";
  }
}

class ShortOfMemory : public AccountTest {};

TEST_F(ShortOfMemory, TheModuleLoadsOrDoesNot) {
  bool loaded = false;
  GoShortOfMemory([&] {
    void* const module = dlopen(NV_MODULE, RTLD_NOW | RTLD_LOCAL);
    loaded = module != nullptr;
    if (loaded) dlclose(module);
  });
  EXPECT_TRUE(loaded);
}

TEST_F(ShortOfMemory, TheModuleLeavesALibcurlThatTheHostUsesAsItIs) {
  const ScriptedServer web(HttpReply(206, "map"));
  void* const module = dlopen(NV_MODULE, RTLD_NOW | RTLD_LOCAL);
  const auto read = reinterpret_cast<decltype(&xfa704a3f)>(dlsym(module, "xfa704a3f"));
  char part[4] = "";
  EXPECT_EQ(read(serverName, "/", 0, 3, part, nullptr, nullptr), 3);
  dlclose(module);
  requests = 0;
  curl_easy_cleanup(curl_easy_init());
  EXPECT_GT(requests, 0) << "for the host's memory";
}

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

TEST_F(ShortOfMemory, ATransferIsWholeOrLeavesNothing) {
  const ScriptedServer web(HttpReply(200, std::string(10'000, 'x')));
  const std::string file = home.folder / "map";
  char part[4] = "";
  std::int32_t got = 0;
  GoShortOfMemory([&] { got = xfa704a3f(serverName, "/", 0, 3, part, nullptr, nullptr); });
  EXPECT_EQ(got, 3);
  bool done = false;
  GoShortOfMemory([&] { done = x77fc64c7(serverName, "/", file.c_str(), nullptr, nullptr); },
                  [&] {
                    EXPECT_EQ(fs::exists(file) ? fs::file_size(file) : 0, done ? 10'000 : 0);
                    EXPECT_FALSE(fs::exists(file + ".TMP"));
                    fs::remove(file);
                  });
  EXPECT_TRUE(done);
}

TEST_F(ShortOfMemory, ATokenAndASessionAreWholeOrThereAreNone) {
  Serve({Int(0) + Text("token")});
  OpenSession({"ann", "secret1"});
  char token[20] = "";
  bool done = false;
  GoShortOfMemory([&] { done = xff99a5e4(nullptr, token); }, [&] { EXPECT_STREQ(token, done ? "token" : ""); });
  EXPECT_TRUE(done);
  GoShortOfMemory([] { x3e491215("Test Product"); });
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
