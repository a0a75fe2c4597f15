// The wait cursor of blocking calls, and the threads that time it.
#include "ui/busy_cursor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

#include "support/played_user.h"

namespace nvsupport {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

TEST(BusyCursor, ShowsAfterItsDelayAndGoesWithTheCall) {
  const PlayedUser person;
  const Clock::time_point start = Clock::now();
  std::optional<BusyCursor> cursor(std::in_place);
  EXPECT_EQ(person.waits, 1);
  while (person.waitCursors == 0 && Clock::now() - start < std::chrono::seconds(20)) std::this_thread::yield();
  EXPECT_GE(Clock::now() - start, milliseconds(150));
  EXPECT_EQ(person.waitCursors, 1);
  cursor.reset();
  EXPECT_EQ(person.waitCursors, 0);
  EXPECT_EQ(person.waits, 0);
}

TEST(Events, StaySetOrNotAsTheyWereMade) {
  for (const BOOL manual : {TRUE, FALSE}) {
    const HANDLE event = CreateEventA(nullptr, manual, TRUE, nullptr);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event, 0), manual != FALSE ? WAIT_OBJECT_0 : WAIT_TIMEOUT);
    EXPECT_TRUE(SetEvent(event));
    EXPECT_EQ(WaitForSingleObject(event, INFINITE), WAIT_OBJECT_0);
    CloseHandle(event);
  }
}

// Or it would run on in code that is unloaded.
TEST(Threads, HaveEndedOnceTheirHandleIsClosed) {
  std::atomic<DWORD> ended = 0;
  const auto run = [](LPVOID argument) -> DWORD {
    std::this_thread::sleep_for(milliseconds(30));
    *static_cast<std::atomic<DWORD>*>(argument) = GetCurrentThreadId();
    return 0;
  };
  CloseHandle(CreateThread(nullptr, 0, run, &ended, 0, nullptr));
  EXPECT_NE(ended, 0u);
  EXPECT_NE(ended, GetCurrentThreadId());
}

}  // namespace
}  // namespace nvsupport
