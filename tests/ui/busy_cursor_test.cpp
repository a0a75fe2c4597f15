// The wait cursor of blocking calls, and the threads and events that time it.
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "support/played_user.h"
#include "ui/busy_cursor.h"

namespace nvsupport {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// While it lives the system gives no thread: none has room for a stack of that size.
class NoMoreThreads {
 public:
  NoMoreThreads() {
    pthread_getattr_default_np(&usual);
    pthread_attr_t huge = usual;
    pthread_attr_setstacksize(&huge, std::size_t{1} << 47);
    EXPECT_EQ(pthread_setattr_default_np(&huge), 0);
  }
  ~NoMoreThreads() {
    pthread_setattr_default_np(&usual);
    pthread_attr_destroy(&usual);
  }
  NoMoreThreads(const NoMoreThreads&) = delete;
  NoMoreThreads& operator=(const NoMoreThreads&) = delete;

 private:
  pthread_attr_t usual;
};

TEST(BusyCursor, NeverShowsForAShortCall) {
  const PlayedUser person;
  const Clock::time_point start = Clock::now();
  {
    const BusyCursor cursor;
    std::this_thread::sleep_for(milliseconds(20));
  }
  if (Clock::now() - start >= milliseconds(150)) GTEST_SKIP() << "the machine is too busy for a short call";
  EXPECT_EQ(user::Record().waitCursorsShown, 0);
  EXPECT_EQ(user::Record().cursorsRestored, 1);
}

TEST(BusyCursor, ShowsAfterItsDelayAndGoesWithTheCall) {
  const PlayedUser person;
  const Clock::time_point start = Clock::now();
  {
    const BusyCursor cursor;
    while (user::Record().waitCursorsShown == 0 && Clock::now() - start < std::chrono::seconds(20)) {
      std::this_thread::sleep_for(milliseconds(1));
    }
    EXPECT_GE(Clock::now() - start, milliseconds(150));
    EXPECT_EQ(user::Record().waitCursorsShown, 1);
    EXPECT_EQ(user::Record().cursorsRestored, 0);
  }
  EXPECT_EQ(user::Record().cursorsRestored, 1);
}

TEST(BusyCursor, ShowsAtOnceWhenThereIsNoThread) {
  const PlayedUser person;
  const NoMoreThreads scarce;
  {
    const BusyCursor cursor;
    EXPECT_EQ(user::Record().waitCursorsShown, 1);
  }
  EXPECT_EQ(user::Record().cursorsRestored, 1);
}

// Or it would run on in code that is unloaded.
TEST(Threads, HaveEndedOnceTheirHandleIsClosed) {
  std::atomic<DWORD> ended = 0;
  const auto run = [](LPVOID argument) -> DWORD {
    std::this_thread::sleep_for(milliseconds(30));
    *static_cast<std::atomic<DWORD>*>(argument) = GetCurrentThreadId();
    return 0;
  };
  const HANDLE thread = CreateThread(nullptr, 0, run, &ended, 0, nullptr);
  EXPECT_EQ(WaitForSingleObject(thread, 1), WAIT_TIMEOUT);
  CloseHandle(thread);
  EXPECT_NE(ended, 0u);
  EXPECT_NE(ended, GetCurrentThreadId());
}

TEST(Events, StaySetOnlyIfResetByHand) {
  for (const bool manual : {true, false}) {
    const HANDLE event = CreateEventA(nullptr, manual, TRUE, nullptr);
    EXPECT_EQ(WaitForSingleObject(event, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event, 0), manual ? WAIT_OBJECT_0 : WAIT_TIMEOUT);
    CloseHandle(event);
  }
  EXPECT_FALSE(SetEvent(nullptr));
  EXPECT_EQ(WaitForSingleObject(nullptr, 0), WAIT_FAILED);
}

}  // namespace
}  // namespace nvsupport
