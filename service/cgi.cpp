#include "service/cgi.h"

#include <fcgiapp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <optional>

#include "service/client_address.h"
#include "service/counters.h"
#include "service/settings.h"

namespace nvsupport::service {
namespace {

constexpr int ok = 200;
constexpr int badRequest = 400;
constexpr int forbidden = 403;
constexpr int methodNotAllowed = 405;
constexpr int lengthRequired = 411;
constexpr int tooLarge = 413;

constexpr std::int64_t usualProcesses = 4;
constexpr std::int64_t usualRequests = 10'000;
// A process gives up a web server that neither sends nor takes anything for so long.
constexpr timeval idleLimit = {10, 0};

class CgiRequest final : public Request {
 public:
  std::size_t Read(char* to, std::size_t size) override { return std::fread(to, 1, size, stdin); }
  bool Write(std::string_view bytes) override { return std::fwrite(bytes.data(), 1, bytes.size(), stdout) != 0; }

 private:
  const char* Find(const char* name) const override { return std::getenv(name); }
};

class FastCgiRequest final : public Request {
 public:
  explicit FastCgiRequest(FCGX_Request& accepted) : request(accepted) {}
  std::size_t Read(char* to, std::size_t size) override {
    return static_cast<std::size_t>(FCGX_GetStr(to, static_cast<int>(size), request.in));
  }
  bool Write(std::string_view bytes) override {
    return FCGX_PutStr(bytes.data(), static_cast<int>(bytes.size()), request.out) >= 0;
  }

 private:
  const char* Find(const char* name) const override { return FCGX_GetParam(name, request.envp); }

  FCGX_Request& request;
};

std::optional<std::size_t> ParseLength(std::string_view text) {
  std::size_t length = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
  if (end != text.data() + text.size()) return std::nullopt;
  // A number with too many digits is still a length, but one beyond every limit.
  if (error == std::errc::result_out_of_range) return SIZE_MAX;
  return error == std::errc() ? std::optional(length) : std::nullopt;
}

// Reads the body of a POST request; the result is the HTTP status, 200 if `body` is complete.
int ReadPost(Request& request, std::size_t limit, Transport transport, std::string& body) {
  const auto length = ParseLength(request.Variable("CONTENT_LENGTH"));
  if (!length) return lengthRequired;
  if (*length > limit) return tooLarge;
  body.resize(*length);
  if (request.Read(body.data(), body.size()) != body.size()) return badRequest;
  // Only now: if nobody reads the body, a web server sends an answer of its own.
  return transport == Transport::secureOnly && !request.IsSecure() ? forbidden : ok;
}

// No cache may keep any part of a reply.
void Send(Request& request, const Reply& reply) {
  std::string head = "Status: " + std::to_string(reply.httpStatus) + "\r\nCache-Control: no-store\r\n";
  for (const std::string& header : reply.headers) head += header + "\r\n";
  head += "Content-Length: " + std::to_string(reply.body.size() + reply.restBytes) + "\r\n\r\n";
  request.Write(head);
  if (request.Variable("REQUEST_METHOD") == "HEAD") return;
  request.Write(reply.body);
  if (reply.rest) reply.rest([&](std::string_view bytes) { return request.Write(bytes); });
}

void AnswerOne(const char* name, Request& request, const Handler& answer) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  Reply reply;
  try {
    reply = answer(request);
  } catch (const std::exception& error) {
    reply = FailedReply(error.what());
  }
  Send(request, reply);
  const std::chrono::duration<double> taken = Clock::now() - start;
  CountRequest(name, reply.httpStatus, taken.count());
  // Holds neither the client's address nor anything that the client wrote.
  char time[] = "2000-01-01T00:00:00Z";
  const std::time_t now = std::time(nullptr);
  std::strftime(time, sizeof time, "%FT%TZ", std::gmtime(&now));
  std::fprintf(stderr, "%s %s %d %.3f s %zu bytes: %s\n", time, name, reply.httpStatus, taken.count(),
               reply.body.size() + reply.restBytes, reply.reason.c_str());
}

// A crash leaves no memory image, and only the owner can read the files that the program creates.
void KeepSecrets() {
  const rlimit none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
  umask(S_IRWXG | S_IRWXO);
}

}  // namespace

void AnswerByFastCgi(const char* name, const Handler& answer, std::int64_t requests, const NextConnection& next) {
  FCGX_Init();
  FCGX_Request accepted;
  constexpr int noListener = -1;  // the connections come from elsewhere
  FCGX_InitRequest(&accepted, noListener, FCGI_FAIL_ACCEPT_ON_INTR);
  for (int connection = 0; requests > 0 && (connection = next()) >= 0;) {
    setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &idleLimit, sizeof idleLimit);
    setsockopt(connection, SOL_SOCKET, SO_SNDTIMEO, &idleLimit, sizeof idleLimit);
    accepted.ipcFd = connection;
    accepted.keepConnection = 1;  // up to the request that is read from it
    if (FCGX_Accept_r(&accepted) != 0) continue;
    --requests;
    FastCgiRequest request(accepted);
    AnswerOne(name, request, answer);
    accepted.keepConnection = 0;
    FCGX_Finish_r(&accepted);
  }
}

std::string Request::Variable(const char* name) const {
  const char* const value = Find(name);
  return value ? value : "";
}

bool Request::IsSecure() const {
  if (!IsTrustedProxy(Variable("REMOTE_ADDR"))) return Variable("HTTPS") == "on";
  return Variable("HTTP_X_FORWARDED_PROTO") == "https";
}

std::string Request::Address() const {
  return ClientAddress(Variable("REMOTE_ADDR"), Variable("HTTP_X_FORWARDED_FOR"));
}

int Serve(const char* name, const Handler& answer) try {
  KeepSecrets();
  if (FCGX_IsCGI() != 0) {
    CgiRequest request;
    AnswerOne(name, request, answer);
    return EXIT_SUCCESS;
  }
  const std::int64_t processes = NumberSetting("NV_SERVICE_PROCESSES", usualProcesses);
  const std::int64_t requests = NumberSetting("NV_SERVICE_REQUESTS_PER_PROCESS", usualRequests);
  RunPool(STDIN_FILENO, processes, [&](const NextConnection& next) { AnswerByFastCgi(name, answer, requests, next); });
  return EXIT_SUCCESS;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s: %s\n", name, error.what());
  return EXIT_FAILURE;
}

Reply AnswerPost(Request& request, std::size_t limit, Transport transport,
                 const std::function<Reply(std::string_view)>& answer) {
  if (request.Variable("REQUEST_METHOD") != "POST") return MethodReply("POST");
  std::string body;
  const int httpStatus = ReadPost(request, limit, transport, body);
  if (httpStatus == ok) return answer(body);
  Reply reply = StatusReply(Status::notUnderstood);
  reply.httpStatus = httpStatus;
  return reply;
}

Reply MethodReply(const std::string& allowed) {
  Reply reply = StatusReply(Status::notUnderstood);
  reply.httpStatus = methodNotAllowed;
  reply.headers.push_back("Allow: " + allowed);
  return reply;
}

}  // namespace nvsupport::service
