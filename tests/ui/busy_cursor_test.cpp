// The wait cursor of blocking calls, and the threads and events that time it.
#include <gtest/gtest.h>
#include <pthread.h>

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
  for (int call = 1; call <= 5; ++call) {
    const int shownBefore = user::Record().waitCursorsShown;
    const Clock::time_point start = Clock::now();
    {
      const BusyCursor cursor;
      std::this_thread::sleep_for(milliseconds(20));
    }
    const bool wasShort = Clock::now() - start < milliseconds(150);  // a busy machine may have stretched it
    if (wasShort) {
      EXPECT_EQ(user::Record().waitCursorsShown, shownBefore);
    }
    EXPECT_EQ(user::Record().cursorsRestored, call);
  }
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
    std::this_thread::sleep_for(milliseconds(200));
    EXPECT_EQ(user::Record().waitCursorsShown, 1) << "once, however long the call takes";
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

TEST(Threads, AreNullWhenTheSystemGivesNone) {
  const NoMoreThreads scarce;
  EXPECT_EQ(CreateThread(
                nullptr, 0, [](LPVOID) -> DWORD { return 0; }, nullptr, 0, nullptr),
            nullptr);
}

TEST(Threads, HaveEndedOnceTheirHandleIsClosed) {
  struct Shared {
    HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    DWORD thread = 0;
  } shared;
  const HANDLE thread = CreateThread(
      nullptr, 0,
      [](LPVOID argument) -> DWORD {
        auto* const mine = static_cast<Shared*>(argument);
        WaitForSingleObject(mine->event, INFINITE);
        std::this_thread::sleep_for(milliseconds(30));
        mine->thread = GetCurrentThreadId();
        return 0;
      },
      &shared, 0, nullptr);
  EXPECT_EQ(WaitForSingleObject(thread, 10), WAIT_TIMEOUT);
  SetEvent(shared.event);
  CloseHandle(thread);
  EXPECT_NE(shared.thread, 0u);
  EXPECT_NE(shared.thread, GetCurrentThreadId());
  CloseHandle(shared.event);
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
