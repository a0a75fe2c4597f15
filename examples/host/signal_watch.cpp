#include "signal_watch.h"

#include <csignal>
#include <initializer_list>

namespace nvhost {
namespace {

volatile std::sig_atomic_t seen = 0;

void OnSignal(int number) {
  seen = number;
}

void SetHandlers(void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaction(number, &action, nullptr);
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
