#include "service/reply.h"

#include <utility>

#include "service/wire_items.h"

namespace nvsupport::service {
namespace {

constexpr int tooManyRequests = 429;
constexpr int unavailable = 503;
constexpr std::int64_t failedRetrySeconds = 2;

const char* Describe(Status status) {
  switch (status) {
    case Status::done:
      return "done";
    case Status::notUnderstood:
      return "not understood";
    case Status::userIdInUse:
      return "the user ID is in use";
    case Status::passwordTooShort:
      return "the password is too short";
    case Status::wrongUserId:
      return "no such user ID";
    case Status::wrongPassword:
      return "another password";
    case Status::noUserId:
      return "no user ID";
    case Status::tooManyComputers:
      return "too many computers";
    case Status::emailInUse:
      return "the email address is in use";
    case Status::invalidEmail:
      return "no email address";
    case Status::serviceFailed:
      return "failed";
  }
  return "";
}

Reply LaterReply(int httpStatus, std::int64_t retrySeconds, std::string reason) {
  Reply reply = StatusReply(Status::serviceFailed);
  reply.httpStatus = httpStatus;
  reply.headers.push_back("Retry-After: " + std::to_string(retrySeconds));
  reply.reason = std::move(reason);
  return reply;
}

}  // namespace

Reply StatusReply(Status status, std::string body) {
  Reply reply;
  reply.headers = {"Content-Type: application/octet-stream"};
  reply.body = std::move(body);
  reply.reason = Describe(status);
  return reply;
}

Reply StatusReply(Status status) {
  return StatusReply(status, ReplyWriter(status).Bytes());
}

Reply RefusedReply(std::int64_t retrySeconds) {
  return LaterReply(tooManyRequests, retrySeconds, "refused by the brake");
}

Reply FailedReply(const std::string& reason) {
  return LaterReply(unavailable, failedRetrySeconds, reason);
}

}  // namespace nvsupport::service
