// Turns Ctrl-C and the polite requests to end (SIGTERM, SIGHUP) into a question, for as long as something is under way
// that must not end suddenly. A second signal of the same kind ends the program.
#ifndef NVHOST_SIGNAL_WATCH_H
#define NVHOST_SIGNAL_WATCH_H

namespace nvhost {

// One at a time. The signals end the program again when it goes.
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
