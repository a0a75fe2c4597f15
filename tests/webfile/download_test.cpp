// Downloads, by the table of what can go wrong: the result, the destination, the temporary file, the counters.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "nvsupport/nvsupport.h"
#include "support/routed_server.h"
#include "support/short_timeouts.h"

namespace nvsupport::testing {
namespace {

using namespace std::chrono_literals;

const std::string ok = "HTTP/1.1 200 OK\r\n";
const std::string old = "old content";
const std::optional<std::string> absent;

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
  std::optional<std::string> Destination() const {
    return std::filesystem::exists(file) ? std::optional(ReadWholeFile(file)) : absent;
  }

  TemporaryFolder folder;
  const std::string file = folder / "a.map";
  const std::string temporary = file + ".TMP";
};

// Runs in a process of its own, as a user without rights if `asNobody`; true if the action is.
bool TrueInChild(const std::function<bool()>& action, bool asNobody = false) {
  const pid_t child = fork();
  if (child == 0) {
    constexpr unsigned nobody = 65534;
    if (asNobody && geteuid() == 0 && (setgid(nobody) != 0 || setuid(nobody) != 0)) _exit(2);
    _exit(action() ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) < 2) << status;
  return status == 0;
}

TEST_F(WebDownload, AsksForTheFileOnce) {
  RoutedServer server(HttpReply(200, "new"));
  EXPECT_TRUE(Download());
  EXPECT_EQ(server.Requests(), (std::vector<std::string>{"GET /maps/a.map HTTP/1.1\r\nHost: web.example\r\n"
                                                         "User-Agent: Norvane\r\nPragma: no-cache\r\n\r\n"}));
}

TEST_F(WebDownload, LeavesWhatTheTableOfFailuresSays) {
  struct Case {
    std::string name;
    Reply reply;
    bool result;
    std::optional<std::string> destination;
    std::int64_t total;  // 0: the counters were not touched, or told so
    std::vector<std::uint64_t> done;
  };
  const std::string chunk(4096, 'c');
  const Case cases[] = {
      {"200", HttpReply(200, "new"), true, "new", 3, {0, 3}},
      {"206", HttpReply(206, "new"), true, "new", 3, {0, 3}},
      {"300", HttpReply(300, "new"), false, old, 0, {}},
      {"301", HttpReply(301, "", "Location: /b\r\n"), false, old, 0, {}},
      {"304", {.bytes = "HTTP/1.1 304 Not Modified\r\n\r\n"}, false, old, 0, {}},
      {"404", HttpReply(404, "none"), false, old, 0, {}},
      {"416", HttpReply(416, "none"), false, old, 0, {}},
      {"500", HttpReply(500, "none"), false, old, 0, {}},
      {"no reply", {.bytes = ""}, false, old, 0, {}},
      {"no HTTP", {.bytes = "new"}, false, old, 0, {}},
      {"silence", NoReply(), false, old, 0, {}},
      {"empty", HttpReply(200, ""), true, "", 0, {0}},
      {"no length", {.bytes = ok + "\r\nnew"}, true, "new", -1, {0, 3}},
      {"chunked", {.bytes = ok + "Transfer-Encoding: chunked\r\n\r\n3\r\nnew\r\n0\r\n\r\n"}, true, "new", -1, {0, 3}},
      {"longer", {.bytes = ok + "Content-Length: 3\r\n\r\nnewer"}, true, "new", 3, {0, 3}},
      {"shorter", {.bytes = ok + "Content-Length: 9\r\n\r\nnew"}, true, "new", 9, {0, 3}},
      {"4096", HttpReply(200, chunk), true, chunk, 4096, {0, 4096}},
      {"4097", HttpReply(200, chunk + "d"), true, chunk + "d", 4097, {0, 4096, 4097}},
      {"reset in the body", {.bytes = ok + "\r\nnew", .end = Reply::End::reset, .pause = 30ms}, false, absent, -1, {0}},
      {"silence in the body", {.bytes = ok + "\r\nnew", .end = Reply::End::hold}, false, absent, -1, {0}},
      {"cut chunk", {.bytes = ok + "Transfer-Encoding: chunked\r\n\r\n9\r\nnew"}, false, absent, -1, {0}},
  };
  const ShortTimeouts timeouts;
  for (const Case& entry : cases) {
    SCOPED_TRACE(entry.name);
    WriteWholeFile(file, old);
    RoutedServer server(entry.reply);
    Watcher watcher;
    EXPECT_EQ(Download(watcher), entry.result);
    EXPECT_EQ(Destination(), entry.destination);
    EXPECT_FALSE(std::filesystem::exists(temporary));
    EXPECT_EQ(watcher.counters.total, entry.total);
    EXPECT_EQ(watcher.done, entry.done);
    EXPECT_EQ(server.Connections(), 1);
  }
}

TEST_F(WebDownload, TakesAnEarlyEndAfterAnyByteForTheEnd) {
  const std::string body(5000, 'b');
  const Reply whole = HttpReply(200, body);
  const std::size_t head = whole.bytes.size() - body.size();
  std::atomic<std::size_t> cut = 0;  // read by the server's thread
  RoutedServer server([&](const std::string&) { return CutAfter(whole, cut); });
  for (cut = 0; cut <= whole.bytes.size(); ++cut) {
    WriteWholeFile(file, old);
    Watcher watcher;
    const bool result = Download(watcher);
    const bool begun = cut >= head;
    const std::size_t got = begun ? cut - head : 0;
    const std::size_t calls = begun ? (got + 4095) / 4096 + 1 : 0;
    ASSERT_EQ(result, begun) << cut;
    ASSERT_EQ(Destination(), begun ? body.substr(0, got) : old) << cut;
    ASSERT_FALSE(std::filesystem::exists(temporary)) << cut;
    ASSERT_EQ(watcher.counters.done, got) << cut;
    ASSERT_EQ(watcher.done.size(), calls) << cut;
  }
}

TEST_F(WebDownload, StopsAtAnyCallOfTheCallback) {
  RoutedServer server(HttpReply(200, std::string(10000, 'b')));
  for (std::size_t call = 1; call <= 4; ++call) {
    WriteWholeFile(file, old);
    Watcher watcher;
    watcher.stopAt = call;
    EXPECT_FALSE(Download(watcher));
    EXPECT_EQ(watcher.done.size(), call);
    EXPECT_EQ(Destination(), absent);
    EXPECT_FALSE(std::filesystem::exists(temporary));
  }
}

TEST_F(WebDownload, TakesAnExceptionOfTheCallbackForAStop) {
  RoutedServer server(HttpReply(200, "new"));
  const auto thrower = [](void*) -> bool { throw 1; };
  EXPECT_FALSE(x77fc64c7(serverName, "x", file.c_str(), thrower, nullptr));
  EXPECT_FALSE(std::filesystem::exists(temporary));
}

TEST_F(WebDownload, CallsNoServerWithoutAName) {
  RoutedServer server(HttpReply(200, "new"));
  EXPECT_FALSE(x77fc64c7("", "x", file.c_str(), nullptr, nullptr));
  EXPECT_FALSE(x77fc64c7(nullptr, "x", file.c_str(), nullptr, nullptr));
  EXPECT_FALSE(x77fc64c7(serverName, "x", nullptr, nullptr, nullptr));
  EXPECT_EQ(Destination(), old);
  EXPECT_EQ(server.Connections(), 0);
}

TEST_F(WebDownload, FailsWhereNoFileCanBeWritten) {
  RoutedServer server(HttpReply(200, "new"));
  EXPECT_FALSE(x77fc64c7(serverName, "x", (folder / "missing/a.map").c_str(), nullptr, nullptr));
  // A folder of the temporary file's name.
  std::filesystem::create_directory(temporary);
  EXPECT_FALSE(Download());
  EXPECT_EQ(Destination(), absent);
  std::filesystem::remove(temporary);
  // A folder of the destination's name.
  std::filesystem::create_directory(file);
  EXPECT_FALSE(Download());
  EXPECT_TRUE(std::filesystem::is_directory(file));
  EXPECT_FALSE(std::filesystem::exists(temporary));
}

TEST_F(WebDownload, FailsInAFolderThatMayNotBeWritten) {
  RoutedServer server(HttpReply(200, "new"));
  chmod(folder.path.c_str(), 0555);
  EXPECT_FALSE(TrueInChild([this] { return Download(); }, true));
  chmod(folder.path.c_str(), 0755);
  EXPECT_EQ(server.Requests().size(), 1u);
  EXPECT_EQ(Destination(), old);
  EXPECT_FALSE(std::filesystem::exists(temporary));
}

TEST_F(WebDownload, LeavesNothingWhenTheDiskIsFull) {
  RoutedServer server(HttpReply(200, std::string(100'000, 'b')));
  const auto download = [this](rlim_t room) {
    return TrueInChild([this, room] {
      const rlimit limit{.rlim_cur = room, .rlim_max = room};
      setrlimit(RLIMIT_FSIZE, &limit);
      return Download();
    });
  };
  for (const rlim_t room : {0u, 1u, 4096u, 50'000u, 99'999u}) {
    WriteWholeFile(file, old);
    EXPECT_FALSE(download(room)) << room;
    EXPECT_EQ(Destination(), absent) << room;
    EXPECT_FALSE(std::filesystem::exists(temporary)) << room;
  }
  EXPECT_TRUE(download(100'000));

  // A device that is always full; a small file shows it no sooner than at its close.
  for (const std::size_t size : {1u, 100'000u}) {
    RoutedServer sender(HttpReply(200, std::string(size, 'b')));
    WriteWholeFile(file, old);
    std::filesystem::create_symlink("/dev/full", temporary);
    EXPECT_FALSE(Download()) << size;
    EXPECT_EQ(Destination(), absent) << size;
    EXPECT_FALSE(std::filesystem::is_symlink(temporary)) << size;
  }
}

TEST_F(WebDownload, BeginsAnewAfterAProcessThatWasKilled) {
  const std::string body(1'000'000, 'b');
  const std::string head = ok + "Content-Length: 1000000\r\n\r\n";
  RoutedServer server(std::vector<Reply>{
      {.bytes = head + body.substr(0, 500'000), .end = Reply::End::hold},
      HttpReply(200, "new"),
  });
  const pid_t child = fork();
  if (child == 0) _exit(Download() ? 0 : 1);
  std::error_code ignored;
  for (int tries = 0; tries < 1000; ++tries) {
    if (std::filesystem::exists(temporary) && std::filesystem::file_size(temporary, ignored) >= 400'000) break;
    std::this_thread::sleep_for(5ms);
  }
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  EXPECT_EQ(Destination(), absent);
  EXPECT_TRUE(std::filesystem::exists(temporary));
  EXPECT_TRUE(Download());
  EXPECT_EQ(Destination(), "new");
  EXPECT_FALSE(std::filesystem::exists(temporary));
}

}  // namespace
}  // namespace nvsupport::testing
