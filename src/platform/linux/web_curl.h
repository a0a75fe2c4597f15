// libcurl with owners for its handles, and the options that all transfers of the web client share.
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
};
extern WebLimits webLimits;

struct EasyDeleter {
  void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct MultiDeleter {
  void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
struct ListDeleter {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using CurlEasy = std::unique_ptr<CURL, EasyDeleter>;
using CurlMulti = std::unique_ptr<CURLM, MultiDeleter>;
using CurlList = std::unique_ptr<curl_slist, ListDeleter>;

// Initialises libcurl for as long as the module is loaded, at the first call.
void UseCurl();

// Keeps libcurl's code in memory to the end of the process.
void PinCurl();

CurlList MakeCurlList(const std::vector<std::string>& lines);
// Where connections really go, from NV_CONNECT_TO; empty if that is not set.
CurlList MakeConnectToList();

// Bytes that libcurl takes from a connection at a time.
inline constexpr long webReceiveSize = 64L * 1024;

// Sets all that does not depend on who receives the reply. The lists must outlive the transfer; the body is copied.
// False if the transfer cannot be made as it should be.
bool SetTransferOptions(CURL* easy, const std::string& url, const WebRequest& request, curl_slist* headers,
                        curl_slist* connectTo, std::string_view body);

}  // namespace platform

#endif
