#include "service/process_pool.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <set>

namespace nvsupport::service {
namespace {

constexpr timespec moment = {0, 100'000'000};  // between two checks

[[noreturn]] void DoWork(const std::function<void()>& work) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  struct sigaction ending = {};
  ending.sa_handler = [](int) {};
  sigaction(SIGTERM, &ending, nullptr);
  signal(SIGPIPE, SIG_IGN);
  try {
    work();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "a process ends: %s\n", error.what());
    _exit(EXIT_FAILURE);
  }
  _exit(EXIT_SUCCESS);
}

}  // namespace

void RunPool(std::int64_t processes, const std::function<void()>& work) {
  sigset_t watched;
  sigemptyset(&watched);
  for (const int signal : {SIGTERM, SIGINT, SIGCHLD}) sigaddset(&watched, signal);
  sigprocmask(SIG_BLOCK, &watched, nullptr);

  std::set<pid_t> children;
  bool ending = false;
  while (!ending || !children.empty()) {
    while (!ending && static_cast<std::int64_t>(children.size()) < processes) {
      const pid_t child = fork();
      if (child == 0) DoWork(work);
      if (child < 0) break;  // tried again at the next check
      children.insert(child);
    }
    const int signal = sigtimedwait(&watched, nullptr, &moment);
    if (signal == SIGTERM || signal == SIGINT) {
      ending = true;
      for (const pid_t child : children) kill(child, SIGTERM);
    }
    bool failed = false;
    int status = 0;
    for (pid_t ended = 0; (ended = waitpid(-1, &status, WNOHANG)) > 0;) {
      children.erase(ended);
      failed = failed || status != 0;
    }
    // So that work that fails at once is not started thousands of times a second.
    if (failed && !ending) nanosleep(&moment, nullptr);
  }
}

}  // namespace nvsupport::service
