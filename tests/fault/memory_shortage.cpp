#include "memory_shortage.h"

#include <curl/curl.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <new>

namespace nvsupport::testing {
namespace {

thread_local long sparedRequests = -1;  // none is refused
thread_local bool shortageLasts = false;
thread_local bool shortageCame = false;

bool IsRefused() {
  if (sparedRequests < 0) return false;
  if (sparedRequests > 0) {
    --sparedRequests;
    return false;
  }
  shortageCame = true;
  if (!shortageLasts) sparedRequests = -1;
  return true;
}

void* Take(std::size_t size) {
  return IsRefused() ? nullptr : std::malloc(size);
}
void* TakeAgain(void* memory, std::size_t size) {
  return IsRefused() ? nullptr : std::realloc(memory, size);
}
void* TakeZeros(std::size_t count, std::size_t size) {
  return IsRefused() ? nullptr : std::calloc(count, size);
}
char* TakeCopy(const char* text) {
  return IsRefused() ? nullptr : strdup(text);
}

// Before the library is the first to use it.
[[maybe_unused]] const CURLcode ready =
    curl_global_init_mem(CURL_GLOBAL_DEFAULT, Take, std::free, TakeAgain, TakeCopy, TakeZeros);

}  // namespace

void GoShortOfMemory(const std::function<void()>& road, const std::function<void()>& look) {
  long places = 0;
  for (const bool lasting : {false, true}) {
    shortageLasts = lasting;
    places = 0;
    for (shortageCame = true; shortageCame; ++places) {
      shortageCame = false;
      sparedRequests = places;
      [&]() noexcept { road(); }();
      sparedRequests = -1;
      look();
      if (::testing::Test::HasFailure()) return;
    }
  }
  EXPECT_GT(places, 1) << "nothing was refused";
}

}  // namespace nvsupport::testing

void* operator new(std::size_t size) {
  if (void* const memory = nvsupport::testing::Take(size)) return memory;
  throw std::bad_alloc();
}

// A sanitizer has all the other forms, too, and wants what one gave back by the same hand.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return nvsupport::testing::Take(size);
}
void* operator new[](std::size_t size) {
  return operator new(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& form) noexcept {
  return operator new(size, form);
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}
