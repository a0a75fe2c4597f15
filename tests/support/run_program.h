// Programs in processes of their own: run to the end, or read by lines while they run.
#ifndef NVSUPPORT_TESTS_SUPPORT_RUN_PROGRAM_H
#define NVSUPPORT_TESTS_SUPPORT_RUN_PROGRAM_H

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace nvsupport::testing {

inline constexpr std::chrono::seconds longestWait(20);

// Asks again and again until the condition holds; false if it does not within the longest wait.
inline bool WaitUntil(const std::function<bool()>& condition) {
  using std::chrono::steady_clock;
  for (const auto end = steady_clock::now() + longestWait; steady_clock::now() < end;) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return false;
}

// A process that ends with the object.
class Process {
 public:
  // Standard error goes where the output goes if `withErrors`, else where the test's goes.
  explicit Process(std::vector<std::string> command, bool withErrors = false) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return;
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& argument : command) arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    process = fork();
    if (process == 0) {
      // Ends even if the test itself is killed.
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      dup2(ends[1], STDOUT_FILENO);
      if (withErrors) dup2(ends[1], STDERR_FILENO);
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

  // The next line of its output; empty at the end of the output and after the longest wait.
  std::string ReadLine() const {
    std::string line;
    for (char character; read(channel, &character, 1) == 1 && character != '\n';) line += character;
    return line;
  }

  // All further output, however long it takes.
  std::string ReadAll() const {
    std::string output;
    char part[4096];
    for (ssize_t length; (length = read(channel, part, sizeof part)) != 0;) {
      if (length > 0) output.append(part, static_cast<std::size_t>(length));
      if (length < 0 && errno != EAGAIN && errno != EINTR) break;
    }
    return output;
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

struct ProgramResult {
  int exitCode = -1;  // -1: ended by a signal
  std::string output;
};

// The program and its arguments. Standard output is collected; the rest is inherited.
inline ProgramResult RunProgram(const std::vector<std::string>& command) {
  Process program(command);
  std::string output = program.ReadAll();
  return {program.Join(), std::move(output)};
}

}  // namespace nvsupport::testing

#endif
