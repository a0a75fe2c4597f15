// Downloads, by the table of what can go wrong: the result, the destination, the temporary file, the counters.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "nvsupport/nvsupport.h"
#include "support/scripted_server.h"
#include "support/temporary_home.h"

namespace nvsupport::testing {
namespace {

const std::string ok = "HTTP/1.1 200 OK\r\n";
const std::string old = "old content";
const std::string absent = "(no file)";

// What a callback sees, and when it stops.
struct Watcher {
  WebProgressCounters counters{};
  std::vector<std::uint64_t> done;  // at each call
  std::size_t stopAt = SIZE_MAX;    // number of the call that answers false

  static bool Call(void* data) {
    auto* watcher = static_cast<Watcher*>(data);
    watcher->done.push_back(watcher->counters.done);
    return watcher->done.size() != watcher->stopAt;
  }
};

class WebDownload : public ::testing::Test {
 protected:
  WebDownload() { WriteWholeFile(file, old); }

  bool Download(Watcher& watcher) {
    return NSDownloadWebFileProgress(serverName, "maps/a.map", file.c_str(), &Watcher::Call, &watcher,
                                     &watcher.counters);
  }
  bool Download() { return x77fc64c7(serverName, "maps/a.map", file.c_str(), nullptr, nullptr); }
  // What the folder holds: the content of the destination, behind it a mark if there is a temporary file.
  std::string Left() const {
    const std::string content = std::filesystem::exists(file) ? ReadWholeFile(file) : absent;
    return content + (std::filesystem::exists(std::filesystem::symlink_status(temporary)) ? " and .TMP" : "");
  }

  TemporaryFolder folder;
  const std::string file = folder / "a.map";
  const std::string temporary = file + ".TMP";
};

TEST_F(WebDownload, AsksForTheFileOnceIfItHasAllNames) {
  ScriptedServer server(HttpReply(200, "new"));
  for (const char* host : {"", static_cast<const char*>(nullptr)}) {
    EXPECT_FALSE(x77fc64c7(host, "x", file.c_str(), nullptr, nullptr));
  }
  EXPECT_FALSE(x77fc64c7(serverName, "x", nullptr, nullptr, nullptr));
  EXPECT_FALSE(x77fc64c7(serverName, "x HTTP/1.1\r\nX-Evil: 1", file.c_str(), nullptr, nullptr));
  EXPECT_EQ(Left(), old);
  WriteWholeFile(temporary, "what a run that was killed has left");
  EXPECT_TRUE(Download());
  EXPECT_EQ(Left(), "new");
  EXPECT_EQ(server.Requests(), (std::vector<std::string>{"GET /maps/a.map HTTP/1.1\r\nHost: web.example\r\n"
                                                         "User-Agent: Norvane\r\nPragma: no-cache\r\n\r\n"}));
}

TEST_F(WebDownload, LeavesWhatTheTableOfFailuresSays) {
  struct Case {
    const char* name;
    Reply reply;
    bool result;
    std::string left;
    std::int64_t total;               // 0: the counters were not touched, or told so
    std::vector<std::uint64_t> done;  // at each call of the callback
  };
  const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
  const std::string chunk(4096, 'c');
  const Case cases[] = {
      {"200", HttpReply(200, "new"), true, "new", 3, {0, 3}},
      {"206", HttpReply(206, "new"), true, "new", 3, {0, 3}},
      {"300", HttpReply(300, "choose"), false, old, 0, {}},
      {"301", HttpReply(301, "", "Location: /b\r\n"), false, old, 0, {}},
      {"404", HttpReply(404, "none"), false, old, 0, {}},
      {"half a head", CutAfter(HttpReply(200, "new"), 20), false, old, 0, {}},
      {"empty", HttpReply(200, ""), true, "", 0, {0}},
      {"no length", {.bytes = ok + "\r\nnew"}, true, "new", -1, {0, 3}},
      {"chunked", {.bytes = chunked + "1\r\nn\r\n2;x=y\r\new\r\n0\r\nTrailer: t\r\n\r\n"}, true, "new", -1, {0, 3}},
      {"interim reply", {.bytes = "HTTP/1.1 103 Wait\r\n\r\n" + ok + "\r\nnew"}, true, "new", -1, {0, 3}},
      {"length past 64 bits",
       {.bytes = ok + "Content-Length: 99999999999999999999\r\n\r\nnew"},
       true,
       "new",
       -1,
       {0, 3}},
      {"longer", {.bytes = ok + "Content-Length: 3\r\n\r\nnewer"}, true, "new", 3, {0, 3}},
      {"shorter", {.bytes = ok + "Content-Length: 9\r\n\r\nnew"}, true, "new", 9, {0, 3}},
      {"closed behind the head", {.bytes = ok + "Content-Length: 9\r\n\r\n"}, true, "", 9, {0}},
      {"4096", HttpReply(200, chunk), true, chunk, 4096, {0, 4096}},
      {"4097", HttpReply(200, chunk + "d"), true, chunk + "d", 4097, {0, 4096, 4097}},
      {"bad chunk", {.bytes = chunked + "3\r\nnew\r\nzz\r\n"}, false, absent, -1, {0}},
      {"cut chunk", {.bytes = chunked + "9\r\nnew"}, false, absent, -1, {0}},
  };
  for (const Case& entry : cases) {
    SCOPED_TRACE(entry.name);
    WriteWholeFile(file, old);
    ScriptedServer server(entry.reply);
    Watcher watcher;
    EXPECT_EQ(Download(watcher), entry.result);
    EXPECT_EQ(Left(), entry.left);
    EXPECT_EQ(watcher.counters.total, entry.total);
    EXPECT_EQ(watcher.done, entry.done);
    EXPECT_EQ(server.Connections(), 1);
  }
}

TEST_F(WebDownload, StopsAtAnyCallOfTheCallbackAndAtAnException) {
  ScriptedServer server(HttpReply(200, std::string(5000, 'b')));
  for (std::size_t call = 1; call <= 3; ++call) {
    WriteWholeFile(file, old);
    Watcher watcher;
    watcher.stopAt = call;
    EXPECT_FALSE(Download(watcher));
    EXPECT_EQ(watcher.done.size(), call);
    EXPECT_EQ(Left(), absent);
  }
  const auto thrower = [](void*) -> bool { throw 1; };
  EXPECT_FALSE(x77fc64c7(serverName, "x", file.c_str(), thrower, nullptr));
  EXPECT_EQ(Left(), absent);
}

}  // namespace
}  // namespace nvsupport::testing
