// The session token: operation 11, with a sign-in before it when no password is known.
#include <algorithm>

#include "account/account_exchange.h"
#include "account/service_manager.h"
#include "base/process_wide.h"
#include "nvsupport/nvsupport.h"

namespace nvsupport {
namespace {

constexpr std::int32_t operation = 11;
constexpr std::size_t longestToken = 19;  // fills the host's buffer with its terminator

}  // namespace

std::string CVServiceManager::GetSessionToken(HWND parent) {
  if (m_password.empty() && !Login(parent)) return {};

  CWebBinaryCGI cgi(accountCgi, true);
  cgi.WriteValue(operation);
  cgi.WriteString(m_userId);
  cgi.WriteString(m_password.view());
  const StatusReply reply = SendForStatus(cgi);
  if (!reply.answered || reply.status != statusSuccess) return {};

  std::string token;
  cgi.ReadString(token);
  return token;
}

}  // namespace nvsupport

bool xff99a5e4(NVWindow parent, char* token) {
  const base::Call call;
  token[0] = '\0';
  if (!call) return false;
  try {
    const nvsupport::AccountOperation operation;
    if (operation.Session() == nullptr) return false;
    std::string text = operation.Session()->GetSessionToken(static_cast<HWND>(parent));
    if (text.size() <= nvsupport::longestToken) std::copy_n(text.c_str(), text.size() + 1, token);
    platform::WipeText(text);
    return token[0] != '\0';
  } catch (...) {
    return false;
  }
}
