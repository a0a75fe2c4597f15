#include "local_server.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "bench_data.h"

namespace nvsupport::bench {
namespace {

struct Process {
  Process() {
    const std::string folder = TemporaryFolder();  // made first, so that it goes last
    int input[2];
    int output[2];
    if (pipe2(input, 0) != 0 || pipe2(output, 0) != 0) std::abort();
    child = fork();
    if (child == 0) {
      dup2(input[0], STDIN_FILENO);
      dup2(output[1], STDOUT_FILENO);
      for (const int end : {input[0], input[1], output[0], output[1]}) close(end);
      execlp("python3", "python3", NV_BENCH_SERVER, serviceHost, std::to_string(delay).c_str(), folder.c_str(),
             nullptr);
      _exit(127);
    }
    close(input[0]);
    close(output[1]);
    hold = input[1];
    std::FILE* const told = fdopen(output[0], "r");
    LocalServer& s = server;
    if (std::fscanf(told, "%d %d %d %d", &s.plain, &s.tls, &s.delayedPlain, &s.delayedTls) != 4) {
      std::fprintf(stderr, "the server did not start\n");
      std::exit(1);
    }
    std::fclose(told);
    server.trust = folder + "/trust.pem";
  }
  ~Process() {
    close(hold);
    waitpid(child, nullptr, 0);
  }

  LocalServer server;
  pid_t child = -1;
  int hold = -1;  // its standard input, whose end tells it to go
};

}  // namespace

const LocalServer& Server() {
  static const Process process;
  return process.server;
}

}  // namespace nvsupport::bench
