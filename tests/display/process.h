// A program whose output a test reads by lines, ended with the object.
#ifndef NVSUPPORT_TESTS_DISPLAY_PROCESS_H
#define NVSUPPORT_TESTS_DISPLAY_PROCESS_H

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace nvsupport::testing {

inline constexpr std::chrono::seconds longestWait(20);

// Asks until it holds, or for the longest wait.
inline bool WaitUntil(const std::function<bool()>& condition) {
  using std::chrono::steady_clock;
  for (const auto end = steady_clock::now() + longestWait; steady_clock::now() < end;) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return false;
}

class Process {
 public:
  // Standard error goes where the output goes if `withErrors`, else where the test's goes.
  explicit Process(std::vector<std::string> command, bool withErrors = false) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return;
    process = fork();
    if (process == 0) {
      // Ends even if the test itself is killed.
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      dup2(ends[1], STDOUT_FILENO);
      if (withErrors) dup2(ends[1], STDERR_FILENO);
      std::vector<char*> arguments;
      for (std::string& argument : command) arguments.push_back(argument.data());
      arguments.push_back(nullptr);
      execvp(arguments[0], arguments.data());
      _exit(127);
    }
    close(ends[1]);
    channel = ends[0];
    const timeval limit{longestWait.count(), 0};
    setsockopt(channel, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process() {
    close(channel);
    if (process <= 0) return;
    kill(process, SIGTERM);
    waitpid(process, nullptr, 0);
  }

  void Signal(int number) const { EXPECT_EQ(kill(process, number), 0); }

  // The next line of its output, empty at its end and after the longest wait.
  std::string ReadLine() const {
    std::string line;
    for (char character; read(channel, &character, 1) == 1 && character != '\n';) line += character;
    return line;
  }

  // Waits for its end: the exit code, -1 if a signal ended it.
  int Join() {
    int status = 0;
    waitpid(std::exchange(process, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t process = -1;
  int channel = -1;  // its standard output
};

}  // namespace nvsupport::testing

#endif
