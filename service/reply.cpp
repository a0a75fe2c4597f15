#include "service/reply.h"

#include <utility>

#include "service/wire_items.h"

namespace nvsupport::service {
namespace {

constexpr int tooManyRequests = 429;
constexpr int unavailable = 503;
constexpr std::int64_t failedRetrySeconds = 2;

constexpr std::pair<Status, const char*> reasons[] = {
    {Status::done, "done"},
    {Status::notUnderstood, "not understood"},
    {Status::userIdInUse, "the user ID is in use"},
    {Status::passwordTooShort, "the password is too short"},
    {Status::wrongUserId, "no such user ID"},
    {Status::wrongPassword, "another password"},
    {Status::noUserId, "no user ID"},
    {Status::tooManyComputers, "too many computers"},
    {Status::emailInUse, "the email address is in use"},
    {Status::invalidEmail, "no email address"},
    {Status::serviceFailed, "failed"},
};

const char* Describe(Status status) {
  for (const auto& [known, reason] : reasons) {
    if (known == status) return reason;
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
