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

Script::Script(std::vector<Reply> replies)
    : function([replies = std::move(replies), next = std::size_t{0}](const std::string&) mutable {
        return replies.at(std::min(next++, replies.size() - 1));
      }) {}

ScriptedServer::ScriptedServer(Script answers, const std::string& host, TlsIdentity shown)
    : script(std::move(answers)), identity(std::move(shown)), listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in place{.sin_family = AF_INET, .sin_port = 0, .sin_addr = {htonl(INADDR_LOOPBACK)}, .sin_zero = {}};
  socklen_t size = sizeof place;
  auto* const address = reinterpret_cast<sockaddr*>(&place);
  if (bind(listener, address, size) != 0 || listen(listener, 64) != 0 || getsockname(listener, address, &size) != 0) {
    throw std::runtime_error("no port to listen on");
  }
  const std::string here = ":127.0.0.1:" + std::to_string(ntohs(place.sin_port)) + ",";
  route = host + ":443" + here + (identity ? "" : host + ":80" + here);
  setenv("NV_CONNECT_TO", (route + Routes()).c_str(), 1);
  thread = std::thread(&ScriptedServer::Serve, this);
}

ScriptedServer::~ScriptedServer() {
  shutdown(listener, SHUT_RDWR);  // wakes the thread
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

void ScriptedServer::Serve() {
  // If the client closes in the middle, that must end the connection and not the test.
  sigset_t signals;
  sigfillset(&signals);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  for (int client; (client = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC)) >= 0; close(client)) {
    ++connections;
    BIO* channel = BIO_new_socket(client, BIO_NOCLOSE);
    if (identity) channel = BIO_push(BIO_new_ssl(identity.get(), 0), channel);
    Reply::End end = Reply::End::keep;
    while (end == Reply::End::keep && WaitForClient(client)) end = Answer(channel);
    // Closing while bytes are unread would discard what was sent.
    char rest[4096];
    while (end != Reply::End::reset && WaitForClient(client) && read(client, rest, sizeof rest) > 0) {
    }
    shutdown(client, SHUT_RD);  // TLS would wait for the client's goodbye
    BIO_free_all(channel);
    ++ended;
  }
}

bool ScriptedServer::WaitForClient(int connection) const {
  pollfd events[] = {{.fd = connection, .events = POLLIN, .revents = 0},
                     {.fd = listener, .events = POLLIN, .revents = 0}};
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
  const int connection = static_cast<int>(BIO_get_fd(channel, nullptr));
  if (reply.end == Reply::End::reset) {
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    setsockopt(connection, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  } else if (reply.end == Reply::End::close) {
    if (identity) BIO_ssl_shutdown(channel);
    shutdown(connection, SHUT_WR);
  }
  return reply.end;
}

}  // namespace nvsupport::testing
