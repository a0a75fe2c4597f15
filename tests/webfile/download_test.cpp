// Downloads, by the table of what can go wrong: the result, the destination, the temporary file, the counters.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "nvsupport/nvsupport.h"
#include "platform/platform.h"
#include "storage/settings_file.h"
#include "support/scripted_server.h"
#include "support/temporary_home.h"

namespace nvsupport::testing {
namespace {

namespace fs = std::filesystem;

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
  bool Download(Watcher& watcher) {
    return NSDownloadWebFileProgress(serverName, "maps/a.map", file.c_str(), &Watcher::Call, &watcher,
                                     &watcher.counters);
  }
  bool Download() { return x77fc64c7(serverName, "maps/a.map", file.c_str(), nullptr, nullptr); }
  // What the folder holds: the content of the destination, behind it a mark if there is a temporary file.
  std::string Left() const {
    const std::string content = fs::exists(file) ? ReadWholeFile(file) : absent;
    return content + (fs::exists(fs::symlink_status(temporary)) ? " and .TMP" : "");
  }

  const TemporaryFolder folder;
  const std::string file = folder / "a.map";
  const std::string temporary = file + ".TMP";
};

TEST_F(WebDownload, AsksForTheFileOnceIfItHasAllNames) {
  const ScriptedServer server(HttpReply(200, "new"));
  WriteWholeFile(file, old);
  const std::pair<const char*, const char*> refused[] = {
      {nullptr, "x"},         {"", "x"},
      {"web.example/x", ""},  {"a@web.example", "x"},
      {"web.example:80", ""}, {"web.example?", "x"},
      {"web.exam\rple", "x"}, {serverName, "x HTTP/1.1\r\nX-Evil: 1"},
      {serverName, "x\x7F"},
  };
  for (const auto& [host, path] : refused) {
    EXPECT_FALSE(x77fc64c7(host, path, file.c_str(), nullptr, nullptr)) << host << " " << path;
  }
  EXPECT_FALSE(x77fc64c7(serverName, "x", nullptr, nullptr, nullptr));
  EXPECT_EQ(Left(), old);
  WriteWholeFile(temporary, "what a run that was killed has left");
  EXPECT_TRUE(Download());
  EXPECT_EQ(Left(), "new");
  EXPECT_EQ(server.Requests(), (std::vector<std::string>{"GET /maps/a.map HTTP/1.1\r\nHost: web.example\r\n"
                                                         "User-Agent: Norvane\r\nPragma: no-cache\r\n\r\n"}));
}

TEST_F(WebDownload, LeavesWhatTheTableOfFailuresSays) {
  const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
  const std::string large(4097, 'l');
  const struct {
    const char* name;
    Reply reply;
    bool result;
    std::string left;
    std::int64_t total;               // 0: the counters were not touched, or told so
    std::vector<std::uint64_t> done;  // at each call of the callback
  } cases[] = {
      {"206", HttpReply(206, "new"), true, "new", 3, {0, 3}},
      {"300", HttpReply(300, "choose"), false, old, 0, {}},
      {"zipped", HttpReply(200, "new", "Transfer-Encoding: gzip\r\n"), false, old, 0, {}},
      {"zipped chunks", {.bytes = ok + "transfer-encoding:gzip, chunked\r\n\r\n0\r\n\r\n"}, false, old, 0, {}},
      {"301", HttpReply(301, "", "Location: /b\r\n"), false, old, 0, {}},
      {"half a head", {.bytes = ok + "X: y"}, false, old, 0, {}},
      {"empty", HttpReply(200, ""), true, "", 0, {0}},
      {"no length", {.bytes = ok + "\r\nnew"}, true, "new", -1, {0, 3}},
      {"chunked", {.bytes = chunked + "1\r\nn\r\n2;x=y\r\new\r\n0\r\nTrailer: t\r\n\r\n"}, true, "new", -1, {0, 3}},
      {"interim reply", {.bytes = "HTTP/1.1 103 Wait\r\n\r\n" + ok + "\r\nnew"}, true, "new", -1, {0, 3}},
      {"longer", {.bytes = ok + "Content-Length: 3\r\n\r\nnewer"}, true, "new", 3, {0, 3}},
      {"shorter", {.bytes = ok + "Content-Length: 9\r\n\r\nnew"}, true, "new", 9, {0, 3}},
      {"more than a read", HttpReply(200, large), true, large, 4097, {0, 4096, 4097}},
      {"bad chunk", {.bytes = chunked + "3\r\nnew\r\nzz\r\n"}, false, absent, -1, {0}},
      {"cut chunk", {.bytes = chunked + "9\r\nnew"}, false, absent, -1, {0}},
  };
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.name);
    WriteWholeFile(file, old);
    const ScriptedServer server(entry.reply);
    Watcher watcher;
    EXPECT_EQ(Download(watcher), entry.result);
    EXPECT_EQ(Left(), entry.left);
    EXPECT_EQ(watcher.counters.total, entry.total);
    EXPECT_EQ(watcher.done, entry.done);
    EXPECT_EQ(server.Requests().size(), 1u);
  }
}

TEST_F(WebDownload, StopsAtAnyCallOfTheCallbackAndAtAnException) {
  const ScriptedServer server(HttpReply(200, std::string(5000, 'b')));
  for (std::size_t call = 1; call <= 3; ++call) {
    Watcher watcher;
    watcher.stopAt = call;
    EXPECT_FALSE(Download(watcher)) << call;
    EXPECT_EQ(watcher.done.size(), call);
    EXPECT_EQ(Left(), absent) << call;
  }
  const auto thrower = [](void*) -> bool { throw 1; };
  EXPECT_FALSE(x77fc64c7(serverName, "x", file.c_str(), thrower, nullptr));
  EXPECT_EQ(Left(), absent);
}

TEST_F(WebDownload, OfTwoToOneFileTheFirstCounts) {
  const std::string body(100'000, 'a');
  const ScriptedServer first(HttpReply(200, body));
  const ScriptedServer second(HttpReply(200, "b"), "b.example");
  const auto another = [](void* data) {
    const auto& name = *static_cast<const std::string*>(data);
    EXPECT_FALSE(MoveFileA((name + ".TMP").c_str(), (name + "2").c_str()));
    EXPECT_FALSE(DeleteFileA((name + ".TMP").c_str()));
    return !x77fc64c7("b.example", "/", name.c_str(), nullptr, nullptr);
  };
  EXPECT_TRUE(x77fc64c7(serverName, "/", file.c_str(), another, const_cast<std::string*>(&file)));
  EXPECT_TRUE(Left() == body);
}

TEST_F(WebDownload, NeitherWritesNorMovesNorDeletesWhatIsNoFile) {
  const ScriptedServer server(HttpReply(200, "body"));
  for (const std::string& place : {file, temporary}) {
    EXPECT_EQ(mkfifo(place.c_str(), 0600), 0);  // as a device, which only root can make
    EXPECT_FALSE(Download()) << place;
    EXPECT_TRUE(fs::is_fifo(place)) << place;
    EXPECT_EQ(server.Requests().empty(), place == file) << "what cannot work is not begun";
    fs::remove(place);
    EXPECT_TRUE(fs::is_empty(folder.path)) << place;
  }
  WriteWholeFile(folder / "other", "kept");
  fs::create_symlink(folder / "other", temporary);
  EXPECT_FALSE(Download());
  EXPECT_EQ(ReadWholeFile(folder / "other"), "kept");
  EXPECT_TRUE(fs::is_symlink(temporary));
  EXPECT_FALSE(x77fc64c7(serverName, "/", (folder / "missing/map").c_str(), nullptr, nullptr));

  const std::size_t requests = server.Requests().size();
  const std::string longName = folder / std::string(252, 'n');
  WriteWholeFile(longName, old);
  for (const std::string& refused : {folder.path.string(), longName}) {
    EXPECT_FALSE(x77fc64c7(serverName, "/", refused.c_str(), nullptr, nullptr)) << refused;
  }
  EXPECT_EQ(ReadWholeFile(longName), old);
  EXPECT_EQ(server.Requests().size(), requests);
}

TEST_F(WebDownload, LeavesNothingThatTheDiskHasNoRoomFor) {
  constexpr std::size_t size = 100'000;
  const ScriptedServer server(HttpReply(200, std::string(size, 'x')));
  CSettingsFile settings;
  settings.SetText("a", std::string(size - 3, 'x'));
  rlimit before{};
  EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  // The last bytes show no sooner than at the close. A signal that tells of the limit would end this process.
  for (const std::size_t room : {std::size_t{0}, size / 2, size - 1, size}) {
    const rlimit limit{room, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    const bool saved = settings.Save(folder / "settings.ini");
    const bool downloaded = Download();
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(saved, room == size) << room;
    EXPECT_EQ(downloaded, room == size) << room;
    EXPECT_EQ(Left() == absent, room != size) << room;
  }
}

}  // namespace
}  // namespace nvsupport::testing
