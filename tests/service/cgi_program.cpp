#include "cgi_program.h"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace {

// A file in memory, so that neither side can block the other.
class MemoryFile {
 public:
  explicit MemoryFile(const std::string& content = {}) {
    EXPECT_EQ(write(descriptor, content.data(), content.size()), static_cast<ssize_t>(content.size()));
    lseek(descriptor, 0, SEEK_SET);
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { close(descriptor); }

  std::string Content() const {
    std::string text(static_cast<std::size_t>(lseek(descriptor, 0, SEEK_END)), '\0');
    EXPECT_EQ(pread(descriptor, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
    return text;
  }

  const int descriptor = memfd_create("cgi", MFD_CLOEXEC);
};

}  // namespace

CgiReply RunCgi(const std::string& program, const std::vector<std::string>& environment, const std::string& body) {
  const std::string path = NV_CGI_BIN "/" + program;
  const MemoryFile input(body);
  const MemoryFile output;
  const MemoryFile errors;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input.descriptor, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output.descriptor, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, errors.descriptor, STDERR_FILENO);
  std::vector<char*> variables;
  variables.reserve(environment.size() + 1);
  for (const std::string& variable : environment) variables.push_back(const_cast<char*>(variable.c_str()));
  variables.push_back(nullptr);
  char* arguments[] = {const_cast<char*>(path.c_str()), nullptr};
  pid_t child = 0;
  EXPECT_EQ(posix_spawn(&child, path.c_str(), &actions, nullptr, arguments, variables.data()), 0) << path;
  posix_spawn_file_actions_destroy(&actions);
  int result = -1;
  waitpid(child, &result, 0);
  EXPECT_EQ(result, 0) << errors.Content();

  const std::string reply = output.Content();
  const std::size_t headEnd = reply.find("\r\n\r\n");
  if (!reply.starts_with("Status: ") || headEnd == std::string::npos) {
    ADD_FAILURE() << "no CGI reply: " << reply;
    return {};
  }
  return {std::atoi(reply.c_str() + std::string("Status: ").size()), reply.substr(headEnd + 4), errors.Content()};
}

CgiReply Post(const std::string& program, const std::string& database, const std::string& body,
              const std::string& sessionSeconds) {
  return RunCgi(program,
                {"REQUEST_METHOD=POST", "HTTPS=on", "CONTENT_LENGTH=" + std::to_string(body.size()),
                 "NV_SERVICE_DATABASE=" + database, "NV_SERVICE_SESSION_SECONDS=" + sessionSeconds,
                 std::string("NV_SERVICE_PRODUCTS=") + NV_PRODUCTS},
                body);
}
