#include "memory_shortage.h"

#include <curl/curl.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>

namespace nvsupport::testing {
namespace {

thread_local long requests = 0;             // for memory, so far
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

void GoShortOfMemory(const std::function<void()>& road, const std::function<void()>& look) {
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

}  // namespace nvsupport::testing

void* operator new(std::size_t size) {
  if (void* const memory = nvsupport::testing::Take(size)) return memory;
  throw std::bad_alloc();
}

// A sanitizer has this form, too, and the one that gives back, which it must let take what is here from malloc.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return nvsupport::testing::Take(size);
}
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
  return "alloc_dealloc_mismatch=0";
}
