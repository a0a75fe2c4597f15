// Signals belong to the host: where its handlers must not run, they are held back on this thread.
#ifndef NVSUPPORT_PLATFORM_LINUX_BLOCKED_SIGNALS_H
#define NVSUPPORT_PLATFORM_LINUX_BLOCKED_SIGNALS_H

#include <signal.h>

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

}  // namespace platform

#endif
