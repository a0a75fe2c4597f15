// While a SignalWatch lives, Ctrl-C and the polite requests to end (SIGTERM, SIGHUP) do not end the program but are
// noted, so that it can finish its work. A second signal of the same kind ends it.
#ifndef NVHOST_SIGNAL_WATCH_H
#define NVHOST_SIGNAL_WATCH_H

namespace nvhost {

// There can be one at a time. After it the signals end the program again.
class SignalWatch {
 public:
  SignalWatch();
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;
  ~SignalWatch();

  // The number of the signal that came, 0 if none did.
  int Seen() const;
};

}  // namespace nvhost

#endif
