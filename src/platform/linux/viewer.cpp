#include "viewer.h"

#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <memory>

namespace {

constexpr std::size_t stackSize = 64 * 1024;

struct Request {
  char** arguments;
  const posix_spawn_file_actions_t* actions;
  const posix_spawnattr_t* attributes;
  int result;
};

// Runs in the process between, on the host's memory, while the calling thread waits.
int SpawnViewer(void* data) {
  auto* request = static_cast<Request*>(data);
  pid_t viewer = 0;
  request->result =
      posix_spawnp(&viewer, request->arguments[0], request->actions, request->attributes, request->arguments, environ);
  return 0;
}

// Starts the viewer by a process between, so that it becomes no child of the host. That process sends no signal when
// it ends, and a wait of the host for any child does not see it.
bool SpawnDetached(Request& request) {
  const auto stack = std::make_unique<std::max_align_t[]>(stackSize / sizeof(std::max_align_t));
  const pid_t between =
      clone(SpawnViewer, stack.get() + stackSize / sizeof(std::max_align_t), CLONE_VM | CLONE_VFORK, &request);
  if (between < 0) return false;
  waitpid(between, nullptr, static_cast<int>(__WCLONE));
  return request.result == 0;
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
  Request request{arguments, &actions, &attributes, -1};
  const bool started = SpawnDetached(request);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);

  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return started;
}

}  // namespace platform
