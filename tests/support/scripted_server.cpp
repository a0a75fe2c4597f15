#include "support/scripted_server.h"

#include <arpa/inet.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace nvsupport::testing {
namespace {

constexpr std::size_t readAtMost = 1'000'000;  // bytes of a request, before the reply begins

// The value of Content-Length in a request's head, 0 without one.
std::size_t BodySize(const std::string& head) {
  constexpr std::string_view name = "\r\nContent-Length: ";
  const std::size_t at = head.find(name);
  return at != std::string::npos ? std::strtoul(head.c_str() + at + name.size(), nullptr, 10) : 0;
}

std::string Routes() {
  const char* const routes = std::getenv("NV_CONNECT_TO");
  return routes != nullptr ? routes : "";
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
  return {.bytes = reply.bytes.substr(0, count)};
}

Script::Script(std::vector<Reply> replies)
    : function([replies = std::move(replies), next = std::size_t{0}](const std::string&) mutable {
        return replies.at(std::min(next++, replies.size() - 1));
      }) {}

ScriptedServer::ScriptedServer(Script answers, const std::string& host, const TlsIdentity& identity)
    : script(std::move(answers)) {
  if (identity.key) {
    context = {SSL_CTX_new(TLS_server_method()), SSL_CTX_free};
    SSL_CTX_use_certificate(context.get(), identity.certificate.get());
    SSL_CTX_use_PrivateKey(context.get(), identity.key.get());
  }
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
  const std::string here = ":127.0.0.1:" + std::to_string(port) + ",";
  route = host + ":443" + here + (context ? "" : host + ":80" + here);
  setenv("NV_CONNECT_TO", (route + Routes()).c_str(), 1);
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
  std::string others = Routes();
  if (const std::size_t at = others.find(route); at != std::string::npos) others.erase(at, route.size());
  setenv("NV_CONNECT_TO", others.c_str(), 1);
}

std::vector<std::string> ScriptedServer::Requests() const {
  const std::lock_guard lock(mutex);
  return requests;
}

int ScriptedServer::Connections() const {
  const std::lock_guard lock(mutex);
  return connections;
}

bool ScriptedServer::Accept() {
  const int accepted = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
  const std::lock_guard lock(mutex);
  if (accepted >= 0) ++connections;
  current = accepted;
  return accepted >= 0 && !stopping;
}

void ScriptedServer::Serve() {
  // A client that goes in the middle ends the connection, not the test.
  sigset_t pipeSignal;
  sigemptyset(&pipeSignal);
  sigaddset(&pipeSignal, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);
  while (Accept()) {
    BIO* channel = BIO_new_socket(current, BIO_NOCLOSE);
    if (context) channel = BIO_push(BIO_new_ssl(context.get(), 0), channel);
    Reply::End end = Reply::End::keep;
    while (end == Reply::End::keep && WaitForClient()) end = Answer(channel);
    // Closing with unread bytes would take back what was sent.
    char rest[4096];
    while (end != Reply::End::reset && WaitForClient() && read(current, rest, sizeof rest) > 0) {
    }
    BIO_free_all(channel);
    const std::lock_guard lock(mutex);
    close(std::exchange(current, -1));
  }
  if (current >= 0) close(current);
}

bool ScriptedServer::WaitForClient() const {
  pollfd events[] = {{.fd = current, .events = POLLIN, .revents = 0}, {.fd = listener, .events = POLLIN, .revents = 0}};
  poll(events, 2, -1);
  return events[0].revents != 0;
}

Reply::End ScriptedServer::Answer(BIO* channel) {
  std::string request;
  for (std::size_t needed = readAtMost; request.size() < needed;) {
    char part[16384];
    const int got = BIO_read(channel, part, sizeof part);
    if (got <= 0) return Reply::End::close;
    request.append(part, static_cast<std::size_t>(got));
    const std::size_t head = request.find("\r\n\r\n");
    if (head != std::string::npos) needed = std::min(needed, head + 4 + BodySize(request.substr(0, head + 2)));
  }
  {
    const std::lock_guard lock(mutex);
    requests.push_back(request);
  }
  const Reply reply = script(request);
  for (std::string_view rest = reply.bytes; !rest.empty();) {
    const std::string_view piece = rest.substr(0, reply.piece != 0 ? reply.piece : rest.size());
    if (BIO_write(channel, piece.data(), static_cast<int>(piece.size())) <= 0) return Reply::End::close;
    rest.remove_prefix(piece.size());
    std::this_thread::sleep_for(reply.pause);
  }
  if (reply.end == Reply::End::reset) {
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    setsockopt(current, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  } else if (reply.end == Reply::End::close) {
    if (context) BIO_ssl_shutdown(channel);
    shutdown(current, SHUT_WR);
  }
  return reply.end;
}

}  // namespace nvsupport::testing
