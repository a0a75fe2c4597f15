// What a program answers to a request, before it is sent to the web server.
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
  std::vector<std::string> headers;  // "Name: value"; those for length and caching are added later
  std::string body;
  // After `body` a long reply has so many bytes more, which `rest` makes piece by piece.
  std::size_t restBytes = 0;
  std::function<void(const Sink&)> rest;
  std::string reason;  // for the log: how the request ended
};

// A reply of the account or map shop service; `body` begins with the status.
Reply StatusReply(Status status, std::string body);
// A reply that is a status alone.
Reply StatusReply(Status status);
// Asks the client to try again after so many seconds: the brake refused the request (429), or the service cannot work
// now (503). Both have the status serviceFailed, because clients do not look at the HTTP status.
Reply RefusedReply(std::int64_t retrySeconds);
Reply FailedReply(const std::string& reason);

}  // namespace nvsupport::service

#endif
