// A host that calls the module from several threads against a server whose every reply is derived from its request, and
// looks at each answer: it is the right one, or a failure. Ends with 1 at the first that is neither, and tells the last
// events. Started by scripts/soak.sh.
#include <nvsupport/nvsupport_module.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "clock.h"
#include "events.h"
#include "host_state.h"
#include "resources.h"

namespace {

using namespace std::chrono_literals;
using soak::Event;
using soak::Fail;
using Clock = std::chrono::steady_clock;

constexpr const char* webHost = "web.soak.example";
constexpr int webThreads = 3;
constexpr std::uint32_t deviceOfNobody = 0;
constexpr std::size_t socketsAtMost = 64;  // kept connections, and what libcurl has beside each

struct Setup {
  std::string module;
  std::uint64_t seed;
  std::chrono::seconds duration;
  std::string folder;                // of the run, with own.pem, foreign.pem and what the host writes
  std::string plain, moved, secure;  // ports
};

// How many calls of a kind gave the right answer, and how many failed.
struct Tally {
  std::atomic<int> right{0}, failed{0};
  void Count(bool wasRight) { ++(wasRight ? right : failed); }
};
Tally downloads, ranges, searches, tokens;

// What one thread draws its choices and the numbers of its requests from.
class Dice {
 public:
  Dice(std::uint64_t seed, unsigned thread) : engine(seed * 64 + thread), number(1 + static_cast<int>(thread)) {}
  int Below(int limit) { return static_cast<int>(engine() % static_cast<std::uint64_t>(limit)); }
  // Never twice in a run; below 90 million, so that it can be a latitude.
  int NextNumber() { return number += 8; }

 private:
  std::mt19937_64 engine;
  int number;
};

// Whether bytes are those of the endless text of a number from a place on.
bool IsStretch(std::string_view bytes, int number, char mark, std::uint64_t at) {
  const std::string unit = std::to_string(number) + mark;
  for (const char c : bytes) {
    if (c != unit[at++ % unit.size()]) return false;
  }
  return true;
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void Download(const NVSupportModule& module, const std::string& folder, char mark, Dice& dice) {
  const int number = dice.NextNumber();
  const int length = dice.Below(60'000);
  const std::string path = "/" + std::to_string(number) + "/" + std::to_string(length);
  const std::string file = folder + "/download-" + std::to_string(number);
  int calls = dice.Below(8) == 0 ? dice.Below(4) : -1;  // some are stopped
  WebProgressCounters counters{};
  const bool done = module.download(
      webHost, path.c_str(), file.c_str(), [](void* left) { return (*static_cast<int*>(left))-- != 0; }, &calls,
      &counters);
  Event("download %s: %s", path.c_str(), done ? "done" : "failed");
  if (std::filesystem::exists(file + ".TMP")) Fail("download %d left a temporary file", number);
  if (done != std::filesystem::exists(file)) Fail("download %d: %d, and its file is another thing", number, done);
  const std::string body = ReadFile(file);
  if (!IsStretch(body, number, mark, 0)) Fail("download %d has the bytes of another", number);
  if (done && body.size() != counters.done)
    Fail("download %d counted %ju bytes", number, std::uintmax_t{counters.done});
  downloads.Count(done && body.size() == static_cast<std::size_t>(length));
  std::filesystem::remove(file);
}

void ReadRange(const NVSupportModule& module, char mark, Dice& dice) {
  const int number = dice.NextNumber();
  const int length = 1 + dice.Below(9000);
  const int offset = dice.Below(50'000);
  const std::string path = "/" + std::to_string(number) + "/100000";
  std::string buffer(static_cast<std::size_t>(length), '?');
  const int got = module.readRange(webHost, path.c_str(), offset, length, buffer.data(), nullptr, nullptr);
  Event("range of %d from %d, %d bytes: %d", number, offset, length, got);
  if (got != length && got != 0 && got != -1) Fail("range %d gave %d", number, got);
  if (got == length && !IsStretch(buffer, number, mark, static_cast<std::uint64_t>(offset)))
    Fail("range %d has the bytes of another", number);
  ranges.Count(got == length);
}

bool IsItem(const MapShopItem& item, int number, int index) {
  const std::string text = std::to_string(number);
  return item.firstValue == index && item.title == text + " title " + std::to_string(index) && item.shortText == text &&
         item.fileReference == "maps/" + text + "/" + std::to_string(index) + ".map" && item.secondValue == number;
}

void Search(const NVSupportModule& module, Dice& dice) {
  const int number = dice.NextNumber();
  const MapShopPoint area[] = {{number / 1e6, 1}};
  const NVMapShopHandle results = module.search(area, 1);
  int right = 0;
  int wrong = 0;
  for (MapShopItem item; module.getNext(results, &item);) ++(IsItem(item, number, right + wrong) ? right : wrong);
  const int closing = module.closeSearch(results);
  Event("search %d: %d items, closing value %d", number, right, closing);
  // A reply that ends in the middle of a number gives the part that came; that is its last item, and no more follows.
  const bool isWhole = closing == number;
  if (wrong > (isWhole ? 0 : 1)) Fail("search %d: %d of its items are another's", number, wrong);
  if (isWhole && right != number % 50) Fail("search %d is whole, but has %d items", number, right);
  searches.Count(isWhole);
}

// The user ID is the number of the request, so each token has a session of its own.
void OpenSession(const NVSupportModule& module, const Setup& setup, int number) {
  const std::string product = "product" + std::to_string(number % 5);
  const std::string folder = setup.folder + "/data/" + product + "-Service";
  std::filesystem::create_directories(folder);
  std::ofstream(folder + "/settings.ini") << "UserID=" << number << "\nPasswd=af510ac58c72fb3049c61de097247ba8\n";
  module.openSession(product.c_str());
  if (module.userId() != std::to_string(number)) Fail("session %d has the user %s", number, module.userId());
}

void GetToken(const NVSupportModule& module, const Setup& setup, bool isTrusted, Dice& dice) {
  const int number = dice.NextNumber();
  OpenSession(module, setup, number);
  char token[20];
  const bool done = module.sessionToken(nullptr, token);
  Event("token %d: %s", number, done ? token : "failed");
  const std::string right = "T" + std::to_string(number);
  if (done && !isTrusted) Fail("token %d came from a server that nobody trusts", number);
  // A reply that ends in the token gives the characters that came.
  if (done != (token[0] != '\0') || !right.starts_with(token)) Fail("token %d is %s", number, token);
  tokens.Count(token == right);
}

// Without a password a dialog is needed, and there is no screen.
void AskForDialog(const NVSupportModule& module) {
  module.openSession("nobody");
  char token[20] = "?";
  Event("dialog without a screen");
  if (module.sessionToken(nullptr, token) || token[0] != '\0') Fail("a dialog without a screen gave %s", token);
}

void ChooseTrust(const Setup& setup, bool isTrusted) {
  Event("trust store: %s", isTrusted ? "own" : "foreign");
  std::ofstream(setup.folder + "/trust.pem") << ReadFile(setup.folder + (isTrusted ? "/own.pem" : "/foreign.pem"));
}

// Long enough that no kept connection carries the next request with a body; the server looks whether one does.
void Idle(const Setup& setup, Dice& dice) {
  const int seconds = 2 + dice.Below(40);
  Event("idle for %d s", seconds);
  soak::Sleep(seconds);
  std::ofstream(setup.folder + "/idled", std::ios::app) << '.';
}

void UseWebFiles(const NVSupportModule& module, const Setup& setup, char mark, Dice& dice, Clock::time_point end) {
  while (Clock::now() < end) {
    dice.Below(2) == 0 ? Download(module, setup.folder, mark, dice) : ReadRange(module, mark, dice);
  }
}

void UseAll(const NVSupportModule& module, const Setup& setup, char mark, Dice& dice, Clock::time_point end) {
  bool isTrusted = true;
  ChooseTrust(setup, isTrusted);
  while (Clock::now() < end) {
    switch (dice.Below(12)) {
      case 0:
        isTrusted = dice.Below(3) != 0;
        ChooseTrust(setup, isTrusted);
        break;
      case 1:
        AskForDialog(module);
        break;
      case 2:
        std::this_thread::sleep_for(std::chrono::milliseconds(dice.Below(60)));
        if (dice.Below(3) == 0) Idle(setup, dice);
        break;
      case 3:
        if (module.deviceId() == deviceOfNobody && module.userId()[0] != '\0') Fail("a session without a device");
        break;
      case 4:
      case 5:
        ReadRange(module, mark, dice);
        break;
      case 6:
      case 7:
      case 8:
        GetToken(module, setup, isTrusted, dice);
        break;
      default:
        Search(module, dice);
    }
  }
}

// The language is chosen when the module is loaded.
void ChooseLanguage(const Setup& setup, Dice& dice) {
  constexpr const char* languages[] = {"English", "Deutsch", "Francais", "Nederlands", "Unheard"};
  std::filesystem::create_directories(setup.folder + "/config/norvane");
  std::ofstream(setup.folder + "/config/norvane/registry.reg")
      << "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Norvane]\n\"Language\"=\"" << languages[dice.Below(5)] << "\"\n";
}

void CheckWhatTheServerSaw(const NVSupportModule& module, const Setup& setup) {
  const std::string file = setup.folder + "/faults";
  if (!module.download(webHost, "/faults", file.c_str(), nullptr, nullptr, nullptr)) Fail("the server is gone");
  const std::string faults = ReadFile(file);
  if (!faults.empty()) Fail("requests with a body: %s", faults.c_str());
}

// Calls of all kinds for a while, and a look at what they left. `mark` tells which of the two ports the web host has.
void RunRound(NVSupportModule& module, const Setup& setup, std::vector<Dice>& dice, char mark, Clock::time_point end) {
  std::vector<std::thread> threads;
  for (int i = 1; i <= webThreads; ++i)
    threads.emplace_back([&, i] { UseWebFiles(module, setup, mark, dice[static_cast<std::size_t>(i)], end); });
  UseAll(module, setup, mark, dice[0], end);
  for (std::thread& thread : threads) thread.join();
  CheckWhatTheServerSaw(module, setup);
}

void SetPorts(const Setup& setup, char mark) {
  const std::string web = mark == '.' ? setup.plain : setup.moved;
  const std::string ports = std::string(webHost) + ":80:127.0.0.1:" + web +
                            ",service.norvane.example:80:127.0.0.1:" + setup.plain +
                            ",service.norvane.example:443:127.0.0.1:" + setup.secure;
  setenv("NV_CONNECT_TO", ports.c_str(), 1);
}

void Load(NVSupportModule& module, const Setup& setup) {
  if (NVSupportOpen(&module, setup.module.c_str()) != nullptr) Fail("the module does not load: %s", dlerror());
}

void Soak(const Setup& setup) {
  const auto end = Clock::now() + setup.duration;
  const auto round = std::min<Clock::duration>(60s, setup.duration / 5);
  std::ofstream(setup.folder + "/idled");
  std::vector<Dice> dice;
  for (unsigned thread = 0; thread <= webThreads; ++thread) dice.emplace_back(setup.seed, thread);
  NVSupportModule module{};
  soak::Resources first;
  for (int rounds = 0; Clock::now() < end; ++rounds) {
    const char mark = dice[0].Below(2) == 0 ? '.' : ':';
    SetPorts(setup, mark);
    ChooseLanguage(setup, dice[0]);
    const soak::HostState host;
    if (module.library == nullptr) Load(module, setup);
    RunRound(module, setup, dice, mark, Clock::now() + round);
    if (rounds > 0 && dice[0].Below(2) == 0) {
      // The port moves under a module that stays; what it keeps meanwhile is bounded.
      soak::Resources().ExpectSocketsAtMost(socketsAtMost);
    } else {
      NVSupportClose(&module);
      if (rounds == 0) first = soak::Resources();
      soak::Resources().ExpectNoMoreThan(first);
    }
    if (const std::string changed = host.Difference(); !changed.empty()) Fail("%s", changed.c_str());
  }
  NVSupportClose(&module);
}

bool Tell(const char* name, const Tally& tally) {
  std::printf("%-10s %7d right %6d failed\n", name, tally.right.load(), tally.failed.load());
  // A module that fails at everything never gives a wrong answer.
  return tally.right > tally.failed / 2;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 8)
    return std::fputs("usage: soak_host MODULE SEED SECONDS FOLDER PORT MOVED_PORT TLS_PORT\n", stderr), 2;
  const Setup setup{arguments[1],
                    std::strtoull(arguments[2], nullptr, 10),
                    std::chrono::seconds(std::atoi(arguments[3])),
                    arguments[4],
                    arguments[5],
                    arguments[6],
                    arguments[7]};
  Soak(setup);
  bool isAlive = Tell("downloads", downloads);
  isAlive &= Tell("ranges", ranges);
  isAlive &= Tell("searches", searches);
  isAlive &= Tell("tokens", tokens);
  if (!isAlive) Fail("too few calls gave an answer at all");
  return 0;
}
