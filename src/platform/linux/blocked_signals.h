// Signals belong to the host: where its handlers must not run, they are held back on this thread, and one that the
// library's own writing raises is taken off again.
#ifndef NVSUPPORT_PLATFORM_LINUX_BLOCKED_SIGNALS_H
#define NVSUPPORT_PLATFORM_LINUX_BLOCKED_SIGNALS_H

#include <signal.h>

#include <cerrno>
#include <ctime>

namespace platform {

inline sigset_t AllSignals() {
  sigset_t all;
  sigfillset(&all);
  return all;
}

// As long as the object lives.
class BlockedSignals {
 public:
  explicit BlockedSignals(const sigset_t& signals) { pthread_sigmask(SIG_BLOCK, &signals, &before); }
  ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;

 private:
  sigset_t before;
};

// A write can raise a signal that ends a host which does not expect it: SIGPIPE where nobody reads, SIGXFSZ beyond the
// process's file size limit. While the object lives both are held back on this thread; what came meanwhile is taken off
// again. One that waits already is the host's, which holds it back itself.
class NoSignalOfWrite {
 public:
  NoSignalOfWrite() = default;
  ~NoSignalOfWrite() {
    const timespec atOnce{};
    while (sigtimedwait(&signals, nullptr, &atOnce) > 0 || errno == EINTR) {
    }
  }

 private:
  static sigset_t NotWaiting() {
    sigset_t waiting;
    sigset_t signals;
    sigpending(&waiting);
    sigemptyset(&signals);
    for (const int number : {SIGPIPE, SIGXFSZ}) {
      if (sigismember(&waiting, number) == 0) sigaddset(&signals, number);
    }
    return signals;
  }

  const sigset_t signals = NotWaiting();
  const BlockedSignals blocked{signals};
};

}  // namespace platform

#endif
