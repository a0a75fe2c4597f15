#include "service/process_pool.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <system_error>
#include <utility>
#include <vector>

namespace nvsupport::service {
namespace {

constexpr int moment = 100;  // milliseconds until what failed is tried again

// A child asks for a connection by a byte over its channel, and gets one beside a byte.
struct Child {
  pid_t process;
  int channel;
  bool asks = false;
};

// A message of one byte, with room for a descriptor beside it.
class Message {
 public:
  Message() {
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
  }

  bool Send(int channel, int descriptor) {
    cmsghdr* const header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof descriptor);
    std::memcpy(CMSG_DATA(header), &descriptor, sizeof descriptor);
    return sendmsg(channel, &message, MSG_NOSIGNAL) == 1;
  }

  // The descriptor; -1 if none comes any more.
  int Receive(int channel) {
    if (recvmsg(channel, &message, MSG_CMSG_CLOEXEC) != 1) return -1;
    const cmsghdr* const header = CMSG_FIRSTHDR(&message);
    if (!header) return -1;
    int descriptor = -1;
    std::memcpy(&descriptor, CMSG_DATA(header), sizeof descriptor);
    return descriptor;
  }

 private:
  char byte = 0;
  iovec content = {&byte, 1};
  alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
  msghdr message = {};
};

class Pool {
 public:
  Pool(int listeningSocket, std::int64_t processes, const std::function<void(const NextConnection&)>& childWork)
      : listener(listeningSocket), size(static_cast<std::size_t>(processes)), work(childWork) {
    sigset_t watched;
    sigemptyset(&watched);
    for (const int signal : {SIGTERM, SIGINT, SIGCHLD}) sigaddset(&watched, signal);
    sigprocmask(SIG_BLOCK, &watched, nullptr);
    signals = signalfd(-1, &watched, SFD_CLOEXEC | SFD_NONBLOCK);
    // Non-blocking: a client can be gone again before its connection is accepted.
    if (signals < 0 || fcntl(listener, F_SETFL, O_NONBLOCK) != 0) {
      throw std::system_error(errno, std::generic_category(), "waiting for requests");
    }
  }

  void Run() {
    while (!ending || !children.empty()) {
      while (IsShort() && Clock::now() >= nextStart && Start()) continue;
      Wait();
      for (signalfd_siginfo signal; read(signals, &signal, sizeof signal) > 0;) {
        if (signal.ssi_signo != SIGCHLD) End();
      }
      Reap();
    }
  }

 private:
  using Clock = std::chrono::steady_clock;

  bool IsShort() const { return !ending && children.size() < size; }

  // False if there can be no more processes just now.
  bool Start() {
    int channel[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, channel) != 0) return false;
    const pid_t process = fork();
    if (process == 0) {
      close(channel[0]);
      DoWork(channel[1]);
    }
    close(channel[1]);
    if (process > 0) {
      children.push_back({process, channel[0]});
    } else {
      close(channel[0]);
    }
    return process > 0;
  }

  [[noreturn]] void DoWork(int channel) const {
    // The end of a channel is noticed when nobody else has it.
    for (const Child& other : children) close(other.channel);
    close(signals);
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    if (nothing < 0 || dup2(nothing, listener) < 0) _exit(EXIT_FAILURE);
    signal(SIGPIPE, SIG_IGN);
    try {
      work([channel] { return write(channel, "", 1) == 1 ? Message().Receive(channel) : -1; });
    } catch (const std::exception& error) {
      std::fprintf(stderr, "a process ends: %s\n", error.what());
      _exit(EXIT_FAILURE);
    }
    _exit(EXIT_SUCCESS);
  }

  // Until something comes; a connection goes to a child that asked for one.
  void Wait() {
    std::vector<pollfd> watched = {{signals, POLLIN, 0}, {-1, POLLIN, 0}};
    for (const Child& child : children) {
      watched.push_back({child.asks || ending ? -1 : child.channel, POLLIN, 0});
      if (child.asks && !ending) watched[1].fd = listener;
    }
    poll(watched.data(), watched.size(), IsShort() ? moment : -1);
    for (std::size_t i = 0; i < children.size(); ++i) {
      char byte = 0;
      if ((watched[i + 2].revents & POLLIN) != 0) children[i].asks = read(children[i].channel, &byte, 1) == 1;
    }
    if (watched[1].revents != 0) HandOver(accept4(listener, nullptr, nullptr, SOCK_CLOEXEC));
  }

  // To the first that takes it: one that has asked may have been killed since.
  void HandOver(int connection) {
    if (connection < 0) return;
    for (Child& child : children) {
      if (std::exchange(child.asks, false) && Message().Send(child.channel, connection)) break;
    }
    close(connection);
  }

  void End() {
    if (ending) return;
    ending = true;
    for (const Child& child : children) close(child.channel);
  }

  void Reap() {
    int status = 0;
    for (pid_t ended = 0; (ended = waitpid(-1, &status, WNOHANG)) > 0;) {
      std::erase_if(children, [&](const Child& child) {
        if (child.process == ended && !ending) close(child.channel);
        return child.process == ended;
      });
      // So that work that fails at once is not started thousands of times a second.
      if (status != 0) nextStart = Clock::now() + std::chrono::milliseconds(moment);
    }
  }

  const int listener;
  const std::size_t size;
  const std::function<void(const NextConnection&)>& work;
  int signals = -1;
  std::vector<Child> children;
  Clock::time_point nextStart;
  bool ending = false;
};

}  // namespace

void RunPool(int listener, std::int64_t processes, const std::function<void(const NextConnection&)>& work) {
  Pool(listener, processes, work).Run();
}

}  // namespace nvsupport::service
