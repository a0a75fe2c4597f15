#include "viewer.h"

#include <fcntl.h>
#include <sched.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

#include "blocked_signals.h"

namespace {

constexpr std::size_t stackSize = (64 << 10) / sizeof(std::max_align_t);

// What the viewer inherits from the host: three streams on /dev/null and nothing else. Not sound if memory ran out
// while that was put together.
class SpawnSettings {
 public:
  SpawnSettings() {
    sigset_t none;
    sigemptyset(&none);
    const sigset_t all = platform::AllSignals();
    constexpr short flags = POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK;
    sound = sound && posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDWR, 0) == 0 &&
            posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDOUT_FILENO) == 0 &&
            posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDERR_FILENO) == 0 &&
            posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1) == 0 &&
            posix_spawnattr_setsigdefault(&attributes, &all) == 0 &&
            posix_spawnattr_setsigmask(&attributes, &none) == 0 && posix_spawnattr_setflags(&attributes, flags) == 0;
  }
  ~SpawnSettings() {
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  bool Sound() const { return sound; }
  bool Spawn(char** arguments) const {
    pid_t viewer = 0;
    return posix_spawnp(&viewer, arguments[0], &actions, &attributes, arguments, environ) == 0;
  }

 private:
  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
  bool sound = posix_spawn_file_actions_init(&actions) == 0 && posix_spawnattr_init(&attributes) == 0;
};

struct Request {
  char** arguments;
  const SpawnSettings& settings;
};

// Runs in the process between; what it returns is that process's exit status.
int SpawnViewer(void* data) {
  const auto* request = static_cast<Request*>(data);
  return request->settings.Spawn(request->arguments) ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

namespace platform {

// Starts the viewer by a process between, so that it becomes no child of the host. That process is cloned without a
// signal for its end, so a wait of the host for any child does not see it either.
bool StartViewer(const char* target) {
  char program[] = "xdg-open";
  char* arguments[] = {program, const_cast<char*>(target), nullptr};
  const SpawnSettings settings;
  const std::unique_ptr<std::max_align_t[]> stack(new (std::nothrow) std::max_align_t[stackSize]);
  if (!settings.Sound() || !stack) return false;

  // No handler of the host may run in the process between.
  const BlockedSignals blocked(AllSignals());
  Request request{arguments, settings};
  const pid_t between = clone(SpawnViewer, stack.get() + stackSize, 0, &request);
  int status = EXIT_FAILURE;
  return between > 0 && waitpid(between, &status, static_cast<int>(__WCLONE)) == between && status == EXIT_SUCCESS;
}

}  // namespace platform
