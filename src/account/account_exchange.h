// What the account operations share: the CGI program that they talk to, the statuses that more than one of them
// knows, and the pages on the service host.
#ifndef NVSUPPORT_ACCOUNT_ACCOUNT_EXCHANGE_H
#define NVSUPPORT_ACCOUNT_ACCOUNT_EXCHANGE_H

#include <algorithm>
#include <cstdint>
#include <span>

#include "wire/web_binary_cgi.h"

namespace nvsupport {

inline constexpr char accountCgi[] = "cgi-bin/svcapp.cgi";
inline constexpr char helpPage[] = "http://" NV_SERVICE_HOST "/WebHelp/account_management.htm";

// An item of the requests that register something; it always has this value.
inline constexpr std::int32_t registrationConstant = 124;

inline constexpr std::int32_t statusSuccess = 0;
inline constexpr std::int32_t statusWrongUserId = 4;
inline constexpr std::int32_t statusWrongPassword = 5;

// What the user is told about any other status.
inline constexpr char exchangeFailed[] = "A problem occured communicating with the server";

// What the user is told about one status.
struct StatusMessage {
  std::int32_t status;
  const char* text;
  int field = 0;  // of the dialog, to be corrected; 0 where it is not the user's fault
};

// The message for a status; one with the text `other` if the table lacks the status.
inline StatusMessage MessageFor(std::span<const StatusMessage> table, std::int32_t status, const char* other) {
  const auto row =
      std::find_if(table.begin(), table.end(), [status](const auto& known) { return known.status == status; });
  return row != table.end() ? *row : StatusMessage{status, other};
}

struct StatusReply {
  bool sent = false;         // the request went out and a reply came
  bool answered = false;     // the reply holds a status
  std::int32_t status = -1;  // as far as it came
};

// Sends a written request and reads the first item of the reply.
inline StatusReply SendForStatus(CWebBinaryCGI& cgi) {
  StatusReply reply;
  reply.sent = cgi.Send();
  if (!reply.sent) return reply;
  cgi.ReadValue(reply.status);
  reply.answered = cgi.IsGood();
  return reply;
}

}  // namespace nvsupport

#endif
