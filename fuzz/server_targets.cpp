// What a web server does on connections that are kept, and what a proxy and a web server hand to the service.
#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <utility>

#include "fuzz.h"
#include "platform/linux/multibyte.h"
#include "platform/linux/web/web_exchange.h"
#include "platform/linux/web/web_limits.h"
#include "platform/platform.h"
#include "service/cgi.h"
#include "service/client_address.h"
#include "service/utf8.h"
#include "wire/type_serializer.h"

namespace nvsupport::fuzz {
namespace {

constexpr int requestsEach = 4;

// Serves connections one after the other, by a script of bytes: 0xFF and one of these; all others go out as they are.
//   'p' a pause, 'r' waits for the next request, 'c' closes, 'x' resets, 'n' the letter of the latest request
class Server {
 public:
  explicit Server(std::string_view bytes) : listener(socket(AF_INET, SOCK_STREAM, 0)), script(bytes) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    Require(listen(listener, 16) == 0);
    Require(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) == 0);
    Require(socketpair(AF_UNIX, SOCK_STREAM, 0, control) == 0);
    // Whatever host a redirect names.
    setenv("NV_CONNECT_TO", ("::127.0.0.1:" + std::to_string(ntohs(address.sin_port))).c_str(), 1);
    thread = std::thread([this] {
      sigset_t all;
      sigfillset(&all);
      pthread_sigmask(SIG_BLOCK, &all, nullptr);  // the fuzzer's clock is not to end a wait
      while (Await(-1)) PlayConnection(accept(listener, nullptr, nullptr));
    });
  }

  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server() {
    shutdown(control[0], SHUT_RDWR);
    thread.join();
    for (const int descriptor : {listener, control[0], control[1]}) close(descriptor);
  }

  // Returns when the server waits for a request or a connection and has sent all that comes before.
  void Settle() {
    char byte = 0;
    Require(write(control[0], &byte, 1) == 1 && TEMP_FAILURE_RETRY(read(control[0], &byte, 1)) == 1);
  }

  // The two below are there when the server has settled.
  struct Sight {
    int times = 0;     // that the request came whole
    std::string sent;  // since it came the last time
  };
  Sight sights[requestsEach];

 private:
  // Waits for bytes or the end of `connection` or else for another connection; false for those and at the end of all.
  bool Await(int connection) {
    for (;;) {
      pollfd events[] = {{connection, POLLIN, 0}, {listener, POLLIN, 0}, {control[1], POLLIN, 0}};
      poll(events, 3, -1);
      if (events[0].revents != 0) return true;
      if (events[1].revents != 0) return connection < 0;
      char byte = 0;
      if (read(control[1], &byte, 1) != 1) return false;
      Require(write(control[1], &byte, 1) == 1);
    }
  }

  void Send(int connection, std::string_view bytes) {
    latest->sent += bytes;
    send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
  }

  void PlayConnection(int connection) {
    const int now = 1;  // bytes do not wait until the client has confirmed earlier ones
    setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &now, sizeof now);
    bool open = ReadRequest(connection);
    while (open && !script.empty()) {
      const std::size_t plain = std::min(script.find('\xFF'), script.size());
      Send(connection, script.substr(0, plain));
      script.remove_prefix(plain);
      const char action = script.size() > 1 ? script[1] : 'c';
      script.remove_prefix(std::min<std::size_t>(script.size(), 2));
      if (action == 'p' && pauses-- > 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
      if (action == 'n') Send(connection, std::string(1, static_cast<char>('A' + (latest - sights))));
      const linger none{.l_onoff = 1, .l_linger = 0};
      if (action == 'x') setsockopt(connection, SOL_SOCKET, SO_LINGER, &none, sizeof none);
      open = action == 'r' ? ReadRequest(connection) : action != 'c' && action != 'x';
    }
    close(connection);
  }

  // False when the client has left the connection.
  bool ReadRequest(int connection) {
    std::string request;
    for (char bytes[4096]; !request.ends_with("\r\n\r\n") && !request.ends_with("\r\n\r\nbody");) {
      const ssize_t got = Await(connection) ? recv(connection, bytes, sizeof bytes, 0) : 0;
      if (got <= 0) return false;
      request.append(bytes, static_cast<std::size_t>(got));
    }
    const std::size_t number = request.find("Number: ");
    if (number == std::string::npos) return false;
    latest = &sights[request[number + 8] - '0'];
    ++latest->times;
    latest->sent.clear();
    return true;
  }

  const int listener;
  int control[2] = {};
  std::string_view script;
  Sight* latest = nullptr;  // of the request that came last
  int pauses = 10;
  std::thread thread;
};

// Whether `part` is left when some bytes of `whole` are taken out, as the ends of chunks are.
bool IsWithin(std::string_view part, std::string_view whole) {
  for (const char c : whole) part.remove_prefix(!part.empty() && part.front() == c ? 1 : 0);
  return part.empty();
}

// Whether no request with a body came twice, and what counts as the reply to a request was sent when that had come:
// bytes that lay on the connection before do not.
bool AnswersAreTrue(std::string_view input) {
  using std::chrono::milliseconds;
  platform::webLimits.connect = platform::webLimits.head = platform::webLimits.silence = milliseconds(8);
  platform::webLimits.exchange = milliseconds(16);
  setenv("SSL_CERT_FILE", "/dev/null", 1);  // a redirect to TLS, which the server has not, is not to read the usual one
  Server server(input);
  for (int number = 0; number < requestsEach; ++number) {
    platform::WebRequest request;
    request.host = "web.example";
    request.port = 80;
    request.post = number % 2 == 1;
    request.followRedirects = !request.post;
    std::string body;
    std::string status = "200";  // which libcurl makes of odd status lines, too
    {
      platform::WebExchange exchange;
      char bytes[997];
      if (exchange.Send(request, "Number:" + std::to_string(number), request.post ? "body" : "")) {
        status = std::to_string(exchange.StatusCode());
        while (const auto got = exchange.Read(bytes, sizeof bytes)) {
          body.append(bytes, *got);
          if (*got == 0) break;
        }
      }
    }
    server.Settle();
    const Server::Sight& seen = server.sights[number];
    if (request.post && seen.times > 1) return false;
    if (status != "200" && seen.sent.find(status) == std::string::npos) return false;
    if (!IsWithin(body, seen.sent)) return false;
  }
  return true;
}

// On a busy machine bytes may take a moment to the client, and so come to a request that they were sent before; but not
// five times in a row.
void KeptConnection(std::string_view input) {
  int left = 5;
  while (!AnswersAreTrue(input)) Require(--left > 0);
}

// The header of a proxy: the client is the peer or an address that stands in the header. What a trusted proxy adds goes
// for more than what stood there before, which anybody may have written.
void ProxyHeader(std::string_view input) {
  const std::string peer = "10.1.2.3";
  setenv("NV_TRUSTED_PROXIES", "192.0.2.7, 10.0.0.0/8,2001:db8::/32,", 1);
  const std::string forwarded(input.substr(0, input.find('\0')));
  const std::string client = service::ClientAddress(peer, forwarded);
  Require(client == peer || forwarded.find(client) != std::string::npos);
  in6_addr parsed;
  Require(inet_pton(client.find(':') == std::string::npos ? AF_INET : AF_INET6, client.c_str(), &parsed) == 1);
  Require(service::ClientAddress("192.0.2.8", forwarded) == "192.0.2.8");
  Require(service::ClientAddress(peer, forwarded + ",192.0.2.8") == "192.0.2.8");
  const std::string further = service::ClientAddress(peer, forwarded + ", 10.2.3.4");
  Require(further == client || (client == peer && further == "10.2.3.4"));
  // The proxies themselves are set by an operator, who errs.
  setenv("NV_TRUSTED_PROXIES", forwarded.c_str(), 1);
  service::IsTrustedProxy(peer);
}

std::string Record(char type, std::string_view content) {
  const auto high = static_cast<char>(content.size() >> 8);
  const auto low = static_cast<char>(content.size());
  return std::string{1, type, 0, 1, high, low, 0, 0}.append(content);
}

// What the records of a reply hold for the client.
std::string ContentOf(std::string_view records) {
  constexpr std::size_t head = 8;
  std::string content;
  while (records.size() >= head) {
    const auto byte = [&](std::size_t at) { return std::size_t{static_cast<unsigned char>(records[at])}; };
    const std::size_t size = byte(4) << 8 | byte(5);
    if (byte(1) == 6) content += records.substr(head, size);
    records.remove_prefix(std::min(head + size + byte(6), records.size()));
  }
  return content;
}

constexpr std::size_t longestBody = 9;

// What docs/service_protocol.md promises.
std::string ExpectedReply(const service::Request& request, std::string_view body) {
  const std::string length = request.Variable("CONTENT_LENGTH");
  const std::string digits = length.substr(std::min(length.find_first_not_of('0'), length.size()));
  const bool isNumber = !length.empty() && length.find_first_not_of("0123456789") == std::string::npos;
  const std::size_t size = digits.size() > 1 ? longestBody + 1 : std::strtoul(digits.c_str(), nullptr, 10);
  const bool byProxy = service::IsTrustedProxy(request.Variable("REMOTE_ADDR"));
  const bool isSecure =
      byProxy ? request.Variable("HTTP_X_FORWARDED_PROTO") == "https" : request.Variable("HTTPS") == "on";
  int status = 200;
  if (request.Variable("REQUEST_METHOD") != "POST") {
    status = 405;
  } else if (!isNumber) {
    status = 411;
  } else if (size > longestBody) {
    status = 413;
  } else if (size > body.size()) {
    status = 400;
  } else if (!isSecure) {
    status = 403;
  }
  std::string reply = status == 200 ? std::string(body.substr(0, size)) : std::string("\1\0\0\0", 4);
  std::string head = "Status: " + std::to_string(status) + "\r\nCache-Control: no-store\r\n" +
                     "Content-Type: application/octet-stream\r\n" + (status == 405 ? "Allow: POST\r\n" : "") +
                     "Content-Length: " + std::to_string(reply.size()) + "\r\n\r\n";
  return request.Variable("REQUEST_METHOD") == "HEAD" ? head : head + reply;
}

// What a web server passes on to the service: lines NAME=VALUE, an empty one, and the body.
void FastCgi(std::string_view input) {
  setenv("NV_TRUSTED_PROXIES", "10.0.0.0/8", 1);
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
  std::string reply;
  std::thread server([&] {
    send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    char part[4096];
    for (ssize_t got = 0; (got = recv(connection, part, sizeof part, 0)) > 0;) {
      reply.append(part, static_cast<std::size_t>(got));
    }
    close(connection);
  });
  std::string expected;
  service::AnswerByFastCgi(
      "fuzz",
      [&](service::Request& request) {
        expected = ExpectedReply(request, input.substr(0, 0xFFFF));
        return service::AnswerPost(request, longestBody, service::Transport::secureOnly, [](std::string_view body) {
          return service::StatusReply(service::Status::done, std::string(body));
        });
      },
      1, [&] { return std::exchange(ends[1], -1); });
  server.join();
  Require(ContentOf(reply) == expected);
}

// What the service keeps is well-formed UTF-8, is left as it is the second time, and reads as the library shows it.
void ServiceText(std::string_view input) {
  const std::string kept = service::ToUtf8(input);
  std::string shown = platform::ToUtf8(input) == input ? std::string(input) : std::string();
  if (shown != input) {
    for (const char& c : input) shown += platform::ToUtf8({&c, 1});
  }
  for (std::size_t at = 0; (at = shown.find('\0', at)) != std::string::npos;) shown.replace(at, 1, "\uFFFD");
  Require(service::ToUtf8(kept) == kept && kept == shown);
}

// A channel whose bytes stay in memory.
class Channel final : public CTypeSerializer {
 public:
  void Write(const void* data, std::int32_t size) override {
    bytes.append(static_cast<const char*>(data), static_cast<std::size_t>(size));
  }
  bool Read(void* data, std::int32_t size) override {
    const std::size_t got = bytes.copy(static_cast<char*>(data), static_cast<std::size_t>(size), next);
    next += got;
    return got > 0;
  }

 private:
  std::string bytes;
  std::size_t next = 0;
};

// A text of UTF-8 that is cut to a field stays one, and loses less than a character.
void TextCut(std::string_view input) {
  if (input.empty()) return;
  const std::size_t width = std::size_t{static_cast<unsigned char>(input[0])} + 1;
  const std::string text = service::ToUtf8(input.substr(1));
  Channel channel;
  channel.WriteString(text);
  std::string field(width, '?');
  if (!channel.ReadFixedString(field.data(), static_cast<std::int32_t>(width))) {
    return Require(text.size() > CTypeSerializer::maxStringLength);
  }
  const std::string cut = field.c_str();
  Require(text.starts_with(cut) && service::ToUtf8(cut) == cut && cut.size() + 4 >= std::min(width, text.size() + 4));
}

}  // namespace

const Target serverTargets[5] = {
    {"fast_cgi", &FastCgi},         {"kept_connection", &KeptConnection},
    {"proxy_header", &ProxyHeader}, {"service_text", &ServiceText},
    {"text_cut", &TextCut},
};

}  // namespace nvsupport::fuzz
