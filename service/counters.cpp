#include "service/counters.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string_view>

#include "service/settings.h"

namespace nvsupport::service {
namespace {

constexpr std::array programs = {"svcapp", "svcuser", "mapstore2"};
constexpr std::array statuses = {200, 400, 403, 404, 405, 411, 413, 429, 503};
constexpr std::array bounds = {0.001, 0.005, 0.01, 0.025, 0.05, 0.1, 0.25, 0.5, 1.0, 2.5};  // seconds
constexpr std::size_t places = 1024;  // slots for processes that hash a password, by process id

using Counter = std::atomic<std::uint64_t>;
static_assert(Counter::is_always_lock_free);

// The content of the shared file. A new file is all zeros, which is valid.
struct Counters {
  struct Program {
    std::array<Counter, statuses.size()> requests;
    std::array<Counter, bounds.size() + 1> durations;  // each counts what lies above the bound before it
    Counter microseconds;
  };
  std::array<Program, programs.size()> of;
  std::array<std::atomic<pid_t>, places> hashing;  // process ids, so that one that was killed is not counted
};

Counters* Map() {
  const std::string path = Setting("NV_SERVICE_COUNTERS");
  constexpr int ownerOnly = 0600;
  const int file = path.empty() ? -1 : open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ownerOnly);
  const bool shared = file >= 0 && ftruncate(file, sizeof(Counters)) == 0;
  void* memory = MAP_FAILED;
  if (shared) memory = mmap(nullptr, sizeof(Counters), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (file >= 0) close(file);
  if (memory == MAP_FAILED && !path.empty()) std::fprintf(stderr, "cannot count in %s\n", path.c_str());
  static Counters ofThisProcess;
  return memory == MAP_FAILED ? &ofThisProcess : static_cast<Counters*>(memory);
}

Counters& All() {
  static Counters* const all = Map();
  return *all;
}

std::atomic<pid_t>& PlaceOfThisProcess() {
  return All().hashing[static_cast<std::size_t>(getpid()) % places];
}

template <typename List, typename Value>
std::size_t Position(const List& list, const Value& value) {
  return static_cast<std::size_t>(std::distance(list.begin(), std::find(list.begin(), list.end(), value)));
}

template <typename... Values>
void Print(std::string& text, const char* format, Values... values) {
  std::array<char, 200> line;
  std::snprintf(line.data(), line.size(), format, values...);
  text += line.data();
}

void PrintDurations(std::string& text, const char* name, const Counters::Program& program) {
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < bounds.size(); ++i) {
    sum += program.durations[i];
    Print(text, "nvservice_request_seconds_bucket{program=\"%s\",le=\"%g\"} %ju\n", name, bounds[i],
          std::uintmax_t{sum});
  }
  sum += program.durations.back();
  Print(text, "nvservice_request_seconds_bucket{program=\"%s\",le=\"+Inf\"} %ju\n", name, std::uintmax_t{sum});
  Print(text, "nvservice_request_seconds_sum{program=\"%s\"} %.6f\n", name,
        static_cast<double>(program.microseconds) / 1e6);
  Print(text, "nvservice_request_seconds_count{program=\"%s\"} %ju\n", name, std::uintmax_t{sum});
}

}  // namespace

void CountRequest(const char* name, int httpStatus, double seconds) {
  const std::size_t program = Position(programs, std::string_view(name));
  const std::size_t status = Position(statuses, httpStatus);
  if (program == programs.size() || status == statuses.size()) return;
  Counters::Program& counters = All().of[program];
  ++counters.requests[status];
  const auto* const bound = std::ranges::lower_bound(bounds, seconds);
  ++counters.durations[static_cast<std::size_t>(bound - bounds.begin())];
  counters.microseconds += static_cast<std::uint64_t>(seconds * 1e6);
}

HashInProgress::HashInProgress() {
  PlaceOfThisProcess() = getpid();
}

HashInProgress::~HashInProgress() {
  PlaceOfThisProcess() = 0;
}

std::string CountersText() {
  std::string text = "# TYPE nvservice_requests_total counter\n";
  for (std::size_t program = 0; program < programs.size(); ++program) {
    for (std::size_t status = 0; status < statuses.size(); ++status) {
      Print(text, "nvservice_requests_total{program=\"%s\",status=\"%d\"} %ju\n", programs[program], statuses[status],
            std::uintmax_t{All().of[program].requests[status]});
    }
  }
  text += "# TYPE nvservice_request_seconds histogram\n";
  for (std::size_t program = 0; program < programs.size(); ++program) {
    PrintDurations(text, programs[program], All().of[program]);
  }
  const auto hashing = std::ranges::count_if(All().hashing, [](const std::atomic<pid_t>& process) {
    const pid_t number = process;
    return number != 0 && kill(number, 0) == 0;
  });
  text += "# TYPE nvservice_hashes_in_progress gauge\n";
  Print(text, "nvservice_hashes_in_progress %jd\n", std::intmax_t{hashing});
  return text;
}

}  // namespace nvsupport::service
