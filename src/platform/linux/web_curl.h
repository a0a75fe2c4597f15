// The limits of the web client, and the options of libcurl that all its transfers share.
#ifndef NVSUPPORT_PLATFORM_LINUX_WEB_CURL_H
#define NVSUPPORT_PLATFORM_LINUX_WEB_CURL_H

#include <curl/curl.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "web_request.h"

namespace platform {

// The limits of the platform. Only what the caller can see counts as progress. Tests shorten them.
struct WebLimits {
  std::chrono::milliseconds connect{60'000};
  std::chrono::milliseconds head{60'000};     // from sending to the head of the final reply, redirects included
  std::chrono::milliseconds silence{60'000};  // without a byte of the body, while the caller waits for one
  // Of an exchange with a body, whose caller cannot stop it:
  std::chrono::milliseconds exchange{120'000};            // from sending to the last byte read
  std::size_t replySize = std::size_t{64} * 1024 * 1024;  // bytes
  // How long a connection may idle and still be used: for a request with a body only while it is almost certainly
  // open, because the request cannot be repeated.
  std::chrono::seconds idle{30};
  std::chrono::seconds idleBeforeBody{5};
};
extern WebLimits webLimits;

struct ListDeleter {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using CurlList = std::unique_ptr<curl_slist, ListDeleter>;

CurlList MakeCurlList(const std::vector<std::string>& lines);
// Where connections really go, from NV_CONNECT_TO; empty if that is not set.
CurlList MakeConnectToList();

// Bytes that libcurl takes from a connection at a time: many, so that a large body costs few calls of the system.
inline constexpr long webReceiveSize = 512L * 1024;

// Sets all that does not depend on who receives the reply. The lists and the body must outlive the transfer.
// False if the transfer cannot be made as it should be.
bool SetTransferOptions(CURL* easy, const std::string& url, const WebRequest& request, curl_slist* headers,
                        curl_slist* connectTo, std::string_view body);

}  // namespace platform

#endif
