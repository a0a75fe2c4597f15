// An allocator of the tests' own for C++ and libcurl: it refuses what a test says. The program that links it has it.
#ifndef NVSUPPORT_TESTS_FAULT_MEMORY_SHORTAGE_H
#define NVSUPPORT_TESTS_FAULT_MEMORY_SHORTAGE_H

#include <gtest/gtest.h>

#include <functional>

namespace nvsupport::testing {

// As long as the object lives, the request for memory behind the first `spared` ones of this thread fails; if the
// shortage lasts, all that follow, too.
class MemoryShortage {
 public:
  MemoryShortage(long spared, bool lasting);
  ~MemoryShortage();
  MemoryShortage(const MemoryShortage&) = delete;
  MemoryShortage& operator=(const MemoryShortage&) = delete;

  // A request was refused.
  static bool Came();
};

// Goes the road with memory running out at each place in turn, and looks after each time. An exception that leaves
// `road` ends the program, as it would the host.
inline void GoShortOfMemory(
    const std::function<void()>& road, const std::function<void()>& look = [] {}) {
  long places = 0;
  for (const bool lasting : {false, true}) {
    for (bool came = true; came;) {
      {
        const MemoryShortage shortage(places, lasting);
        [&]() noexcept { road(); }();
        came = MemoryShortage::Came();
      }
      look();
      places = came ? places + 1 : lasting ? places : 0;
      if (::testing::Test::HasFailure()) return;
    }
  }
  EXPECT_GT(places, 0) << "nothing was refused";
}

}  // namespace nvsupport::testing

#endif
