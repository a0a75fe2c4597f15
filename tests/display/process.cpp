#include "process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace nvsupport::testing {
namespace {

constexpr int longestWait = 20'000;  // milliseconds

[[noreturn]] void Become(const std::vector<std::string>& command,
                         const std::map<std::string, std::string>& environment) {
  for (const auto& [name, value] : environment) {
    value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
  }
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  _exit(127);
}

}  // namespace

bool WaitUntil(const std::function<bool()>& condition) {
  using std::chrono::steady_clock;
  for (const auto end = steady_clock::now() + std::chrono::seconds(20); steady_clock::now() < end;) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return false;
}

Process::Process(const std::vector<std::string>& command, const std::map<std::string, std::string>& environment,
                 bool withErrors) {
  int toProgram[2];
  int fromProgram[2];
  if (pipe2(toProgram, O_CLOEXEC) != 0 || pipe2(fromProgram, O_CLOEXEC) != 0) return;
  process = fork();
  if (process == 0) {
    // Ends even if the test itself is killed.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    dup2(toProgram[0], STDIN_FILENO);
    dup2(fromProgram[1], STDOUT_FILENO);
    if (withErrors) dup2(fromProgram[1], STDERR_FILENO);
    Become(command, environment);
  }
  close(toProgram[0]);
  close(fromProgram[1]);
  input = toProgram[1];
  output = fromProgram[0];
}

Process::~Process() {
  close(input);
  close(output);
  if (process <= 0) return;
  kill(process, SIGTERM);
  waitpid(process, nullptr, 0);
}

void Process::WriteLine(const std::string& line) const {
  const std::string bytes = line + "\n";
  EXPECT_EQ(write(input, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

std::string Process::ReadLine() {
  std::size_t end;
  while ((end = unread.find('\n')) == std::string::npos) {
    pollfd waiting{output, POLLIN, 0};
    char buffer[4096];
    if (poll(&waiting, 1, longestWait) <= 0) return {};
    const ssize_t length = read(output, buffer, sizeof buffer);
    if (length <= 0) return {};
    unread.append(buffer, static_cast<std::size_t>(length));
  }
  std::string line = unread.substr(0, end);
  unread.erase(0, end + 1);
  return line;
}

std::string Process::Find(const std::string& key) {
  std::string seen;
  for (std::string line = ReadLine(); !line.empty(); line = ReadLine()) {
    if (line.rfind(key + " ", 0) == 0) return line.substr(key.size() + 1);
    seen += line + "\n";
  }
  ADD_FAILURE() << "no line " << key << " behind\n" << seen;
  return {};
}

void Process::Signal(int number) const {
  EXPECT_EQ(kill(process, number), 0);
}

int Process::Join() {
  int status = 0;
  close(input);
  input = -1;
  waitpid(process, &status, 0);
  process = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace nvsupport::testing
