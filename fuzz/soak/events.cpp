#include "events.h"

#include <unistd.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace soak {
namespace {

std::mutex lock;
std::array<std::array<char, 160>, 20> events{};
std::size_t noted = 0;

}  // namespace

void Event(const char* format, ...) {
  const std::lock_guard held(lock);
  std::array<char, 160>& event = events[noted++ % events.size()];
  va_list values;
  va_start(values, format);
  std::vsnprintf(event.data(), event.size(), format, values);
  va_end(values);
}

void Fail(const char* format, ...) {
  const std::lock_guard held(lock);
  va_list values;
  va_start(values, format);
  std::vprintf(format, values);
  va_end(values);
  std::puts("\nthe last events:");
  for (std::size_t i = 0; i < events.size(); ++i) std::printf("  %s\n", events[(noted + i) % events.size()].data());
  std::fflush(stdout);
  _exit(1);
}

}  // namespace soak
