#include "account/account_exchange.h"

#include <algorithm>

namespace nvsupport {

StatusMessage MessageFor(std::span<const StatusMessage> table, std::int32_t status, const char* other) {
  const auto row =
      std::find_if(table.begin(), table.end(), [status](const auto& known) { return known.status == status; });
  return row != table.end() ? *row : StatusMessage{status, other};
}

StatusReply SendForStatus(CWebBinaryCGI& cgi) {
  StatusReply reply;
  reply.sent = cgi.Send();
  if (!reply.sent) return reply;
  cgi.ReadValue(reply.status);
  reply.answered = cgi.IsGood();
  return reply;
}

}  // namespace nvsupport
