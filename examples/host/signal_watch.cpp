#include "signal_watch.h"

#include <csignal>

#include "system.h"

namespace nvhost {
namespace {

volatile std::sig_atomic_t seen = 0;

void OnSignal(int number) {
  std::signal(number, SIG_DFL);
  seen = number;
}

void SetHandlers(void (*handler)(int)) {
  for (const int number : EndingSignals()) std::signal(number, handler);
}

}  // namespace

SignalWatch::SignalWatch() {
  SetHandlers(OnSignal);
}

SignalWatch::~SignalWatch() {
  SetHandlers(SIG_DFL);
}

int SignalWatch::Seen() const {
  return seen;
}

}  // namespace nvhost
