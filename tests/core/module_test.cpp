// The module as a host has it: the file that the build made, loaded by path and used through the public header alone.
// Each test is a process of its own.
#include <gtest/gtest.h>
#include <nvsupport/nvsupport_module.h>
#include <openssl/crypto.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "mapshop/map_shop_reply.h"
#include "soak/host_state.h"
#include "support/run_program.h"
#include "support/scripted_server.h"
#include "support/temporary_home.h"

static int callsOfHostsOwn = 0;

// A function of the host's own that is called like an export. The module calls what it means.
extern "C" __attribute__((visibility("default"))) bool NSDownloadWebFileProgress(const char*, const char*, const char*,
                                                                                 WebProgressCallback, void*,
                                                                                 WebProgressCounters*) {
  ++callsOfHostsOwn;
  return true;
}

namespace nvsupport::testing {
namespace {

namespace fs = std::filesystem;

// What the process holds at a moment.
struct Holdings {
  std::ptrdiff_t files = std::distance(fs::directory_iterator("/proc/self/fd"), {});
  std::ptrdiff_t threads = std::distance(fs::directory_iterator("/proc/self/task"), {});
  std::ptrdiff_t mappings = std::ranges::count(ReadWholeFile("/proc/self/maps"), '\n');
  long pages = 0;  // resident

  Holdings() { std::ifstream("/proc/self/statm") >> pages >> pages; }
};

class Module : public ::testing::Test {
 protected:
  NVSupportModule Load(const char* file = NV_MODULE) {
    NVSupportModule module;
    EXPECT_EQ(NVSupportOpen(&module, file), nullptr);
    return module;
  }
  // Opens a session that stays open, and searches without an area.
  void Use(const NVSupportModule& module) {
    const soak::HostState host;
    module.openSession("Atlas");
    EXPECT_STREQ(module.userId(), "");
    const NVMapShopHandle results = module.search(nullptr, 0);
    MapShopItem item;
    EXPECT_TRUE(module.getNext(results, &item));
    EXPECT_EQ(module.closeSearch(results), 7);
    EXPECT_FALSE(module.downloadWithoutCounters("", "", "nowhere", nullptr, nullptr));
    EXPECT_EQ(host.Difference(), "");
  }

  TemporaryHome home;
  const ScriptedServer server{HttpReply(200, ReplyWith({{"Norrland", 1, "N", "n.nvpkg", -2}}, 7)), NV_SERVICE_HOST};
};

TEST_F(Module, SetsNothingToWorkAtLoadAndLeavesAtUnload) {
  const Holdings before;
  NVSupportModule module = Load();
  const Holdings loaded;
  EXPECT_EQ(loaded.files, before.files);
  EXPECT_EQ(loaded.threads, before.threads);
  NVSupportClose(&module);
  EXPECT_EQ(dlopen(NV_MODULE, RTLD_NOW | RTLD_NOLOAD), nullptr);
  EXPECT_TRUE(fs::is_empty(home.folder.path)) << "something is left behind";
}

TEST_F(Module, LoadsItsWebClientOnceForTheFirstThreadsThatNeedIt) {
  const auto isThere = [](const char* file) {
    return ReadWholeFile("/proc/self/maps").find(file) != std::string::npos;
  };
  NVSupportModule module = Load();
  EXPECT_FALSE(isThere("libcurl"));
  std::vector<std::thread> threads(8);
  for (std::thread& thread : threads) {
    thread = std::thread([&] {
      char byte = 0;
      module.readRange(NV_SERVICE_HOST, "", 0, 1, &byte, nullptr, nullptr);  // the server answers one at a time
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(isThere("nvsupport-web.so"));
  NVSupportClose(&module);
  EXPECT_FALSE(isThere("nvsupport-web.so"));
}

TEST_F(Module, TellsWhyItsWebClientIsNotToBeHad) {
  const ScopedVariable trace("NV_TRACE", "web");
  const std::string copy = home.folder / "nvsupport.so";
  const fs::path plugin = home.folder / "nvsupport-web.so";
  fs::copy_file(NV_MODULE, copy);
  NVSupportModule module = Load(copy.c_str());
  const auto search = [&] {
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(module.closeSearch(module.search(nullptr, 0)), 0);
    return ::testing::internal::GetCapturedStderr();
  };
  EXPECT_NE(search().find(plugin.string() + ": cannot open shared object file"), std::string::npos);
  fs::copy_file(NV_OTHER_PLUGIN, plugin);
  EXPECT_NE(search().find("another version"), std::string::npos);
  fs::remove(plugin);
  fs::create_symlink(fs::path(NV_MODULE).replace_filename("nvsupport-web.so"), plugin);
  EXPECT_EQ(module.closeSearch(module.search(nullptr, 0)), 7) << "it is looked for again";
  NVSupportClose(&module);
}

// Thread-local memory that is allocated at its first use would be needed just when memory has run out.
TEST_F(Module, NeedsNoMemoryToKeepAnError) {
  const ProgramResult nm = RunProgram({"nm", "-D", "--undefined-only", "--format=just-symbols", NV_MODULE});
  EXPECT_EQ(nm.exitCode, 0);
  EXPECT_EQ(nm.output.find("__tls_get_addr"), std::string::npos);
}

TEST_F(Module, ServesAHostThatHasTheNameOfAnExportAndNeverUnloads) {
  Use(Load());
  EXPECT_EQ(callsOfHostsOwn, 0);
}

TEST_F(Module, LeavesTheHostsSignalsAloneWhenNobodyReadsStandardError) {
  const ScopedVariable all("NV_TRACE", "all");
  int ends[2];
  EXPECT_EQ(pipe(ends) + close(ends[0]), 0);
  dup2(ends[1], STDERR_FILENO);
  const NVSupportModule module = Load();
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  for (const bool waiting : {false, true}) {
    if (waiting) pthread_sigmask(SIG_BLOCK, &signals, nullptr), raise(SIGPIPE);
    Use(module);
    char token[20];
    EXPECT_FALSE(module.sessionToken(nullptr, token)) << "for want of a display, which is told to nobody";
    EXPECT_EQ(sigpending(&signals), 0);
    EXPECT_EQ(sigismember(&signals, SIGPIPE), waiting);
    sigaddset(&signals, SIGPIPE);
  }
}

TEST_F(Module, StaysWholeWhenTheProcessEndsInTheMiddleOfCalls) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const ScriptedServer web(HttpReply(206, std::string(5000, 'x')));
  const auto endBusily = [this] {
    // Behind all that the module registers.
    std::atexit([] { _exit(OPENSSL_init_crypto(0, nullptr) == 1 ? 0 : 3); });
    static std::atomic<int> reads = 0;
    std::thread([module = Load()] {
      for (char bytes[5000];; ++reads) module.readRange(serverName, "x", 0, sizeof bytes, bytes, nullptr, nullptr);
    }).detach();
    while (reads < 100) std::this_thread::yield();
    std::exit(0);
  };
  for (int round = 0; round < 5; ++round) EXPECT_EXIT(endBusily(), ::testing::ExitedWithCode(0), "");
}

TEST_F(Module, HoldsNothingMoreAfterManyLoadsInUse) {
  const auto loadOften = [&](int rounds) {
    for (int round = 0; round < rounds; ++round) {
      NVSupportModule module = Load();
      Use(module);
      NVSupportClose(&module);
    }
  };
  loadOften(10);
  const Holdings before;
  loadOften(100);
  const Holdings after;
  EXPECT_LE(after.files, before.files + 1) << "the server's connection, perhaps";
  EXPECT_EQ(after.threads, before.threads);
  if (NV_SANITIZED) return;  // a sanitizer keeps books about every load, and finds leaks by itself
  EXPECT_LE(after.mappings - before.mappings, 4) << "the allocator may take some";
  EXPECT_LE(after.pages - before.pages, 256) << "1 MiB";
}

}  // namespace
}  // namespace nvsupport::testing
