// What a web server does on connections that are kept, and what a proxy and a web server hand to the service.
#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <utility>

#include "fuzz.h"
#include "platform/linux/web/web_exchange.h"
#include "platform/linux/web/web_limits.h"
#include "platform/platform.h"
#include "service/cgi.h"
#include "service/client_address.h"
#include "service/utf8.h"

namespace nvsupport::fuzz {
namespace {

constexpr int requestsEach = 4;

// Serves connections one after the other, by a script of bytes: 0xFF and one of these; all others go out as they are.
//   'p' a pause, 'r' waits for the next request, 'c' closes, 'x' resets
class Server {
 public:
  Server() : listener(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    Require(listen(listener, 16) == 0);
    Require(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) == 0);
    setenv("NV_CONNECT_TO", ("web.example:80:127.0.0.1:" + std::to_string(ntohs(address.sin_port))).c_str(), 1);
  }

  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server() { close(listener); }

  // Until `ended`; behind the script's end it closes what comes.
  void Play(std::string_view script, const std::atomic<bool>& ended) {
    while (Await(listener, ended)) PlayConnection(accept(listener, nullptr, nullptr), script, ended);
  }

  int posts = 0;  // requests with a body that came whole or in part

 private:
  static bool Await(int descriptor, const std::atomic<bool>& ended) {
    pollfd events{.fd = descriptor, .events = POLLIN, .revents = 0};
    while (!ended && poll(&events, 1, 1) == 0) continue;
    return !ended;
  }

  void PlayConnection(int connection, std::string_view& script, const std::atomic<bool>& ended) {
    ReadRequest(connection, ended);
    while (!script.empty()) {
      const std::size_t plain = std::min(script.find('\xFF'), script.size());
      send(connection, script.data(), plain, MSG_NOSIGNAL);
      script.remove_prefix(plain);
      const char action = script.size() > 1 ? script[1] : 'c';
      script.remove_prefix(std::min<std::size_t>(script.size(), 2));
      if (action == 'p') std::this_thread::sleep_for(std::chrono::milliseconds(1));
      if (action == 'r' && !ReadRequest(connection, ended)) break;
      if (action == 'c') break;
      const linger now{.l_onoff = 1, .l_linger = 0};
      if (action == 'x') setsockopt(connection, SOL_SOCKET, SO_LINGER, &now, sizeof now);
      if (action == 'x') break;
    }
    close(connection);
  }

  // False when the client is gone.
  bool ReadRequest(int connection, const std::atomic<bool>& ended) {
    char bytes[4096];
    if (!Await(connection, ended)) return false;
    const ssize_t got = recv(connection, bytes, sizeof bytes, 0);
    if (got > 4 && std::memcmp(bytes, "POST", 4) == 0) ++posts;
    return got > 0;
  }

  const int listener;
};

// Every other request has a body, which is sent once, whatever the server does.
void KeptConnection(std::string_view input) {
  Server server;
  platform::webLimits.connect = platform::webLimits.head = platform::webLimits.silence = std::chrono::milliseconds(40);
  platform::webLimits.exchange = std::chrono::milliseconds(80);
  std::atomic<bool> ended = false;
  std::thread thread([&] { server.Play(input, ended); });
  int sent = 0;
  for (int number = 0; number < requestsEach; ++number) {
    platform::WebRequest request;
    request.host = "web.example";
    request.port = 80;
    request.path = std::to_string(number);
    request.post = number % 2 == 1;
    sent += request.post ? 1 : 0;
    platform::WebExchange exchange;
    char bytes[997];
    if (!exchange.Send(request, {}, request.post ? "body" : "")) continue;
    std::size_t length = 0;
    while (const auto got = exchange.Read(bytes, sizeof bytes)) {
      length += *got;
      if (*got == 0) break;
    }
    Require(length <= input.size());
  }
  ended = true;
  thread.join();
  Require(server.posts <= sent);
}

// The header of a proxy: the client is the peer or somebody who stands in the header, and never a trusted proxy that
// has one in front of it.
void ProxyHeader(std::string_view input) {
  setenv("NV_TRUSTED_PROXIES", "192.0.2.7, 10.0.0.0/8,2001:db8::/32,", 1);
  const std::string forwarded(input.substr(0, input.find('\0')));
  const std::string client = service::ClientAddress("10.1.2.3", forwarded);
  Require(client == "10.1.2.3" || forwarded.find(client) != std::string::npos);
  Require(service::ClientAddress("192.0.2.8", forwarded) == "192.0.2.8");
  // The proxies themselves are set by an operator, who errs.
  setenv("NV_TRUSTED_PROXIES", forwarded.c_str(), 1);
  service::IsTrustedProxy("10.1.2.3");
}

std::string Record(char type, std::string_view content) {
  const auto high = static_cast<char>(content.size() >> 8);
  const auto low = static_cast<char>(content.size());
  return std::string{1, type, 0, 1, high, low, 0, 0}.append(content);
}

// What a web server passes on to the service: lines NAME=VALUE, an empty one, and the body.
void FastCgi(std::string_view input) {
  constexpr std::size_t longest = 120;  // of a name or value, which takes one byte to tell
  std::string variables;
  for (std::size_t end = 0; (end = input.find('\n')) != std::string_view::npos && end > 0;) {
    const std::string_view line = input.substr(0, end);
    const std::string_view name = line.substr(0, std::min(line.find('='), longest));
    const std::string_view value = line.substr(std::min(name.size() + 1, line.size())).substr(0, longest);
    variables.append({static_cast<char>(name.size()), static_cast<char>(value.size())}).append(name).append(value);
    input.remove_prefix(end + 1);
  }
  const std::string bytes = Record(1, std::string_view("\0\1\0\0\0\0\0\0", 8)) +
                            Record(4, std::string_view(variables).substr(0, 0xFFFF)) + Record(4, "") +
                            Record(5, input.substr(0, 0xFFFF)) + Record(5, "");
  int ends[2] = {};
  Require(socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == 0);
  const int connection = ends[0];
  std::thread server([&] {
    send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    char reply[4096];
    while (recv(connection, reply, sizeof reply, 0) > 0) continue;
    close(connection);
  });
  service::AnswerByFastCgi(
      "fuzz",
      [](service::Request& request) {
        return service::AnswerPost(request, 999, service::Transport::secureOnly, [](std::string_view body) {
          Require(body.size() <= 999);
          return service::StatusReply(service::Status::done, std::string(body));
        });
      },
      1, [&] { return std::exchange(ends[1], -1); });
  server.join();
}

// What the service keeps is well-formed UTF-8, and is left as it is the second time.
void ServiceText(std::string_view input) {
  const std::string kept = service::ToUtf8(input);
  Require(service::ToUtf8(kept) == kept && kept.find('\0') == std::string::npos);
}

// A text of UTF-8 that is cut to a field stays one, and loses less than a character.
void TextCut(std::string_view input) {
  if (input.empty()) return;
  const std::size_t room = static_cast<unsigned char>(input[0]);
  const std::string text = service::ToUtf8(input.substr(1));
  std::string field(room, '?');
  _mbsnbcpy(reinterpret_cast<unsigned char*>(field.data()), reinterpret_cast<const unsigned char*>(text.c_str()), room);
  const std::string cut = field.c_str();
  Require(text.starts_with(cut) && service::ToUtf8(cut) == cut && cut.size() + 3 >= std::min(room, text.size()));
}

}  // namespace

const Target serverTargets[5] = {
    {"fast_cgi", &FastCgi},         {"kept_connection", &KeptConnection},
    {"proxy_header", &ProxyHeader}, {"service_text", &ServiceText},
    {"text_cut", &TextCut},
};

}  // namespace nvsupport::fuzz
