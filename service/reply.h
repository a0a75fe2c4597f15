// What a program answers to a request, before it goes to the web server.
#ifndef NVSUPPORT_SERVICE_REPLY_H
#define NVSUPPORT_SERVICE_REPLY_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "service/status.h"

namespace nvsupport::service {

struct Reply {
  // Takes the next bytes of a body; false when the client is gone.
  using Sink = std::function<bool(std::string_view)>;

  int httpStatus = 200;
  std::vector<std::string> headers;  // "Name: value", but for the length and those that forbid keeping the reply
  std::string body;
  // A long body goes on after `body` with so many bytes, which `rest` makes piece by piece.
  std::size_t restBytes = 0;
  std::function<void(const Sink&)> rest;
  std::string reason;  // for the log: what came of the request
};

// A reply of the account or map shop service; `body` begins with the status.
Reply StatusReply(Status status, std::string body);
// The same without anything behind the status.
Reply StatusReply(Status status);
// The request is to come again after so many seconds: refused by the brake (429), or the service cannot work now (503).
// Either has the status serviceFailed, so that clients, which look at no HTTP status, show the same.
Reply RefusedReply(std::int64_t retrySeconds);
Reply FailedReply(const std::string& reason);

}  // namespace nvsupport::service

#endif
