#include "service/cgi.h"

#include <sys/resource.h>
#include <sys/stat.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <stdexcept>

#include "service/wire_items.h"

namespace nvsupport::service {
namespace {

constexpr int ok = 200;
constexpr int badRequest = 400;
constexpr int forbidden = 403;
constexpr int methodNotAllowed = 405;
constexpr int lengthRequired = 411;
constexpr int tooLarge = 413;
constexpr std::string_view replyType = "application/octet-stream";

std::optional<std::size_t> ParseLength(std::string_view text) {
  std::size_t length = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
  if (end != text.data() + text.size()) return std::nullopt;
  // A number with too many digits is a length all the same, only one beyond every limit.
  if (error == std::errc::result_out_of_range) return SIZE_MAX;
  return error == std::errc() ? std::optional(length) : std::nullopt;
}

// Reads the body of a POST request; the result is the HTTP status, 200 if `body` is complete.
int ReadPost(std::size_t limit, Transport transport, std::string& body) {
  if (Variable("REQUEST_METHOD") != "POST") return methodNotAllowed;
  const auto length = ParseLength(Variable("CONTENT_LENGTH"));
  if (!length) return lengthRequired;
  if (*length > limit) return tooLarge;
  body.resize(*length);
  if (std::fread(body.data(), 1, body.size(), stdin) != body.size()) return badRequest;
  // Not sooner: a web server that finds nobody reading the body answers in its own way.
  return transport == Transport::secureOnly && !IsSecure() ? forbidden : ok;
}

}  // namespace

int AnswerPost(std::size_t limit, Transport transport, const std::function<std::string(std::string_view)>& answer) {
  std::string body;
  const int httpStatus = ReadPost(limit, transport, body);
  std::string reply;
  try {
    reply = httpStatus == ok ? answer(body) : ReplyWriter(Status::notUnderstood).Bytes();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "request failed: %s\n", error.what());
    reply = ReplyWriter(Status::serviceFailed).Bytes();
  }
  SendReply(httpStatus, replyType, reply);
  return EXIT_SUCCESS;
}

void SendReply(int httpStatus, std::string_view contentType, std::string_view body) {
  std::printf("Status: %d\r\nContent-Type: %.*s\r\nContent-Length: %zu\r\nCache-Control: no-store\r\n\r\n", httpStatus,
              static_cast<int>(contentType.size()), contentType.data(), body.size());
  std::fwrite(body.data(), 1, body.size(), stdout);
  std::fflush(stdout);
}

void KeepSecrets() {
  const rlimit none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
  umask(S_IRWXG | S_IRWXO);
}

std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

std::string RequiredVariable(const char* name) {
  std::string value = Variable(name);
  if (value.empty()) throw std::runtime_error(std::string(name) + " is not set");
  return value;
}

bool IsSecure() {
  return Variable("HTTPS") == "on";
}

}  // namespace nvsupport::service
