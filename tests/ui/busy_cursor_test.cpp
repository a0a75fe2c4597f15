// The wait cursor of blocking calls, and the threads and events that time it.
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

#include "support/played_user.h"
#include "ui/busy_cursor.h"

namespace nvsupport {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

TEST(BusyCursor, ShowsAfterItsDelayAndGoesWithTheCall) {
  const PlayedUser person;
  const Clock::time_point start = Clock::now();
  std::optional<BusyCursor> cursor(std::in_place);
  while (headless::Record().waitCursorsShown == 0 && Clock::now() - start < std::chrono::seconds(20)) {
    std::this_thread::sleep_for(milliseconds(1));
  }
  EXPECT_GE(Clock::now() - start, milliseconds(150));
  EXPECT_EQ(headless::Record().waitCursorsShown, 1);
  EXPECT_EQ(headless::Record().cursorsRestored, 0);
  cursor.reset();
  EXPECT_EQ(headless::Record().cursorsRestored, 1);
}

TEST(BusyCursor, ShowsAtOnceWhenThereIsNoThread) {
  const PlayedUser person;
  // No thread has room for a stack of this size.
  pthread_attr_t usual;
  pthread_getattr_default_np(&usual);
  pthread_attr_t huge = usual;
  pthread_attr_setstacksize(&huge, std::size_t{1} << 47);
  ASSERT_EQ(pthread_setattr_default_np(&huge), 0);
  std::optional<BusyCursor> cursor(std::in_place);
  EXPECT_EQ(headless::Record().waitCursorsShown, 1);
  cursor.reset();
  EXPECT_EQ(headless::Record().cursorsRestored, 1);
  pthread_setattr_default_np(&usual);
  pthread_attr_destroy(&usual);
}

// Or it would run on in code that is unloaded.
TEST(Threads, HaveEndedOnceTheirHandleIsClosed) {
  struct Job {
    HANDLE go = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    std::atomic<DWORD> ended = 0;
  } job;
  const auto run = [](LPVOID argument) -> DWORD {
    auto& mine = *static_cast<Job*>(argument);
    WaitForSingleObject(mine.go, INFINITE);
    std::this_thread::sleep_for(milliseconds(30));
    mine.ended = GetCurrentThreadId();
    return 0;
  };
  const HANDLE thread = CreateThread(nullptr, 0, run, &job, 0, nullptr);
  EXPECT_EQ(WaitForSingleObject(thread, 1), WAIT_TIMEOUT);
  SetEvent(job.go);
  CloseHandle(thread);
  CloseHandle(job.go);
  EXPECT_NE(job.ended, 0u);
  EXPECT_NE(job.ended, GetCurrentThreadId());
}

}  // namespace
}  // namespace nvsupport
