#include "interrupt.h"

#include <csignal>

namespace nvhost {
namespace {

volatile std::sig_atomic_t interrupted = 0;

void OnInterrupt(int) {
  interrupted = 1;
}

}  // namespace

void WatchInterrupt() {
  struct sigaction action = {};
  action.sa_handler = OnInterrupt;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
}

bool Interrupted() {
  return interrupted != 0;
}

}  // namespace nvhost
