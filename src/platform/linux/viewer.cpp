#include "viewer.h"

#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace {

constexpr std::size_t stackSize = 64 << 10;

struct Request {
  char** arguments;
  const posix_spawn_file_actions_t* actions;
  const posix_spawnattr_t* attributes;
};

// Runs in the process between; what it returns is that process's exit status.
int SpawnViewer(void* data) {
  const auto* request = static_cast<Request*>(data);
  pid_t viewer = 0;
  return posix_spawnp(&viewer, request->arguments[0], request->actions, request->attributes, request->arguments,
                      environ) == 0
             ? EXIT_SUCCESS
             : EXIT_FAILURE;
}

// Starts the viewer by a process between, so that it becomes no child of the host. That process is cloned without a
// signal for its end, so a wait of the host for any child does not see it either.
bool SpawnDetached(Request& request) {
  const auto stack = std::make_unique<std::max_align_t[]>(stackSize / sizeof(std::max_align_t));
  const pid_t between = clone(SpawnViewer, stack.get() + stackSize / sizeof(std::max_align_t), 0, &request);
  int status = EXIT_FAILURE;
  return between > 0 && waitpid(between, &status, static_cast<int>(__WCLONE)) == between && status == EXIT_SUCCESS;
}

}  // namespace

namespace platform {

bool StartViewer(const char* target) {
  char program[] = "xdg-open";
  char* arguments[] = {program, const_cast<char*>(target), nullptr};

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDWR, 0);
  posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDERR_FILENO);
  posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);

  sigset_t all;
  sigset_t none;
  sigset_t before;
  sigfillset(&all);
  sigemptyset(&none);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setsigdefault(&attributes, &all);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

  // No handler of the host may run in the process between.
  pthread_sigmask(SIG_SETMASK, &all, &before);
  Request request{arguments, &actions, &attributes};
  const bool started = SpawnDetached(request);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);

  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return started;
}

}  // namespace platform
