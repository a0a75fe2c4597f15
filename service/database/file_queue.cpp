#include "service/database/file_queue.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <system_error>

namespace nvsupport::service {
namespace {

constexpr int ownerOnly = 0600;

// The bytes of the file that are locked: whose turn it is, and who is next.
constexpr off_t turn = 0;
constexpr off_t next = 1;

using Clock = std::chrono::steady_clock;

// While it lives, interrupts this thread's system calls again and again: the kernel's queue has no time limit.
class Alarm {
 public:
  Alarm() {
    struct sigaction nothing = {};
    nothing.sa_handler = [](int) {};
    sigaction(wake, &nothing, nullptr);
    sigevent event = {};
    event.sigev_notify = SIGEV_THREAD_ID;
    event.sigev_signo = wake;
    event._sigev_un._tid = gettid();
    if (timer_create(CLOCK_MONOTONIC, &event, &timer) != 0) {
      throw std::system_error(errno, std::generic_category(), "a timer for a queue");
    }
    constexpr itimerspec often = {{0, 50'000'000}, {0, 50'000'000}};
    timer_settime(timer, 0, &often, nullptr);
  }
  Alarm(const Alarm&) = delete;
  Alarm& operator=(const Alarm&) = delete;
  ~Alarm() { timer_delete(timer); }

 private:
  static constexpr int wake = SIGALRM;
  timer_t timer = {};
};

// False if another process has the lock, or still has it at the end of the time.
bool Lock(int descriptor, int command, int type, off_t byte, Clock::time_point end = Clock::time_point::max()) {
  struct flock lock = {};
  lock.l_type = static_cast<short>(type);
  lock.l_whence = SEEK_SET;
  lock.l_start = byte;
  lock.l_len = 1;
  int result = 0;
  do result = fcntl(descriptor, command, &lock);
  while (result != 0 && errno == EINTR && Clock::now() < end);
  return result == 0;
}

}  // namespace

FileQueue::FileQueue(const std::string& path)
    : descriptor(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ownerOnly)) {
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), path);
}

FileQueue::~FileQueue() {
  close(descriptor);
}

// Two locks, so that a process that leaves and comes back has to stand behind the next one. With a single lock it would
// take that again before the others are awake, and have turn after turn.
bool FileQueue::Enter(std::chrono::milliseconds patience) {
  // Mostly nobody else is there, and no alarm is needed.
  if (Lock(descriptor, F_OFD_SETLK, F_WRLCK, next)) {
    const bool entered = TryEnter();
    if (entered || patience == std::chrono::milliseconds::zero()) {
      Lock(descriptor, F_OFD_SETLK, F_UNLCK, next);
      return entered;
    }
  }
  const bool endless = patience == std::chrono::milliseconds::max();
  const auto end = endless ? Clock::time_point::max() : Clock::now() + patience;
  const Alarm alarm;
  const bool entered =
      Lock(descriptor, F_OFD_SETLKW, F_WRLCK, next, end) && Lock(descriptor, F_OFD_SETLKW, F_WRLCK, turn, end);
  const int error = errno;
  Lock(descriptor, F_OFD_SETLK, F_UNLCK, next);
  if (!entered && error != EINTR) throw std::system_error(error, std::generic_category(), "waiting in a queue");
  return entered;
}

bool FileQueue::TryEnter() {
  return Lock(descriptor, F_OFD_SETLK, F_WRLCK, turn);
}

void FileQueue::Leave() noexcept {
  Lock(descriptor, F_OFD_SETLK, F_UNLCK, turn);
}

}  // namespace nvsupport::service
