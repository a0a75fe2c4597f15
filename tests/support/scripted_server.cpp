#include "support/scripted_server.h"

#include <arpa/inet.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <strings.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace nvsupport::testing {
namespace {

// The value of Content-Length in a request's head, 0 without one.
std::size_t BodySize(const std::string& head) {
  constexpr std::string_view name = "\r\nContent-Length:";
  for (std::size_t at = 0; (at = head.find("\r\n", at)) != std::string::npos; ++at) {
    if (strncasecmp(head.c_str() + at, name.data(), name.size()) == 0) {
      return std::strtoul(head.c_str() + at + name.size(), nullptr, 10);
    }
  }
  return 0;
}

ScriptedServer::Script InOrder(std::vector<Reply> replies) {
  return [replies = std::move(replies), next = std::size_t{0}](const std::string&) mutable {
    return replies.at(std::min(next++, replies.size() - 1));
  };
}

SSL_CTX* MakeContext(const TlsIdentity& identity) {
  SSL_CTX* context = SSL_CTX_new(TLS_server_method());
  SSL_CTX_use_certificate(context, identity.certificate.get());
  SSL_CTX_use_PrivateKey(context, identity.key.get());
  return context;
}

}  // namespace

Reply HttpReply(int status, std::string_view body, std::string_view headers) {
  std::string bytes = "HTTP/1.1 " + std::to_string(status) + " Scripted\r\n";
  bytes.append(headers).append("Content-Length: ").append(std::to_string(body.size())).append("\r\n\r\n").append(body);
  return {.bytes = std::move(bytes), .end = Reply::End::keep};
}

Reply NoReply() {
  return {.bytes = {}, .end = Reply::End::hold};
}

Reply CutAfter(Reply reply, std::size_t count) {
  reply.bytes.resize(std::min(count, reply.bytes.size()));
  reply.end = Reply::End::close;
  return reply;
}

void OpenSslDeleter::operator()(evp_pkey_st* object) const {
  EVP_PKEY_free(object);
}
void OpenSslDeleter::operator()(ssl_ctx_st* object) const {
  SSL_CTX_free(object);
}
void OpenSslDeleter::operator()(x509_st* object) const {
  X509_free(object);
}

// One connection, plain or TLS.
class ScriptedServer::Channel {
 public:
  Channel(int accepted, SSL_CTX* context) : descriptor(accepted), ssl(context != nullptr ? SSL_new(context) : nullptr) {
    if (ssl != nullptr) SSL_set_fd(ssl, descriptor);
  }
  ~Channel() { SSL_free(ssl); }
  Channel(const Channel&) = delete;
  Channel& operator=(const Channel&) = delete;

  bool Open() { return ssl == nullptr || SSL_accept(ssl) == 1; }
  // Bytes that came, 0 or less at the end.
  long Read(char* data, std::size_t size) {
    return ssl != nullptr ? SSL_read(ssl, data, static_cast<int>(size)) : read(descriptor, data, size);
  }
  bool Write(std::string_view data) {
    while (!data.empty()) {
      const long sent = ssl != nullptr ? SSL_write(ssl, data.data(), static_cast<int>(data.size()))
                                       : write(descriptor, data.data(), data.size());
      if (sent <= 0) return false;
      data.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
  }
  void End(Reply::End end) {
    if (end == Reply::End::reset) {
      const linger atOnce{.l_onoff = 1, .l_linger = 0};
      setsockopt(descriptor, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
      return;
    }
    if (end == Reply::End::close) {
      if (ssl != nullptr) SSL_shutdown(ssl);
      shutdown(descriptor, SHUT_WR);
    }
  }

 private:
  int descriptor;
  SSL* ssl;
};

ScriptedServer::ScriptedServer(std::vector<Reply> replies, const TlsIdentity* identity)
    : ScriptedServer(InOrder(std::move(replies)), identity) {}

ScriptedServer::ScriptedServer(Script chooser, const TlsIdentity* identity)
    : script(std::move(chooser)), context(identity != nullptr ? MakeContext(*identity) : nullptr) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener, 64) != 0 ||
      getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    close(listener);
    throw std::runtime_error("no port to listen on");
  }
  port = ntohs(address.sin_port);
  thread = std::thread(&ScriptedServer::Serve, this);
}

ScriptedServer::~ScriptedServer() {
  {
    const std::lock_guard lock(mutex);
    stopping = true;
    // Wakes the thread wherever it waits.
    shutdown(listener, SHUT_RDWR);
    if (current >= 0) shutdown(current, SHUT_RDWR);
  }
  thread.join();
  close(listener);
}

std::string ScriptedServer::ConnectTo(const std::string& host, int hostPort) const {
  return host + ":" + std::to_string(hostPort) + ":127.0.0.1:" + std::to_string(port);
}

std::vector<std::string> ScriptedServer::Requests() const {
  const std::lock_guard lock(mutex);
  return requests;
}

int ScriptedServer::Connections() const {
  const std::lock_guard lock(mutex);
  return connections;
}

void ScriptedServer::Serve() {
  // A client that goes in the middle ends the connection, not the test.
  sigset_t pipeSignal;
  sigemptyset(&pipeSignal);
  sigaddset(&pipeSignal, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);
  while (true) {
    const int accepted = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    {
      const std::lock_guard lock(mutex);
      if (stopping || accepted < 0) {
        if (accepted >= 0) close(accepted);
        return;
      }
      current = accepted;
      ++connections;
    }
    {
      Channel channel(accepted, context.get());
      auto end = Reply::End::close;
      if (channel.Open()) {
        do end = Answer(channel);
        while (end == Reply::End::keep && WaitForClient(accepted));
      }
      // Closing with unread bytes would take back what was sent.
      char rest[4096];
      while (end != Reply::End::reset && WaitForClient(accepted) && read(accepted, rest, sizeof rest) > 0) {
      }
    }
    const std::lock_guard lock(mutex);
    current = -1;
    close(accepted);
  }
}

bool ScriptedServer::WaitForClient(int connection) const {
  pollfd events[] = {{.fd = connection, .events = POLLIN, .revents = 0},
                     {.fd = listener, .events = POLLIN, .revents = 0}};
  poll(events, std::size(events), -1);
  return events[0].revents != 0;
}

Reply::End ScriptedServer::Answer(Channel& channel) {
  std::string request;
  std::size_t needed = std::string::npos;
  while (request.size() < std::min(needed, enough.load())) {
    char part[16384];
    const long got = channel.Read(part, sizeof part);
    if (got <= 0) return Reply::End::close;
    request.append(part, static_cast<std::size_t>(got));
    const std::size_t head = request.find("\r\n\r\n");
    if (head != std::string::npos) needed = head + 4 + BodySize(request.substr(0, head + 2));
  }
  {
    const std::lock_guard lock(mutex);
    requests.push_back(request);
  }
  const Reply reply = script(request);
  const std::size_t piece = reply.piece != 0 ? reply.piece : reply.bytes.size();
  for (std::size_t at = 0; at < reply.bytes.size(); at += piece) {
    if (at != 0) std::this_thread::sleep_for(reply.pause);
    if (!channel.Write(std::string_view(reply.bytes).substr(at, piece))) return Reply::End::close;
  }
  std::this_thread::sleep_for(reply.pause);
  channel.End(reply.end);
  return reply.end;
}

}  // namespace nvsupport::testing
