// The options of libcurl that all transfers of the web client share.
#ifndef NVSUPPORT_PLATFORM_LINUX_WEB_OPTIONS_H
#define NVSUPPORT_PLATFORM_LINUX_WEB_OPTIONS_H

#include <curl/curl.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "web/web_request.h"
#include "web/web_trust.h"

namespace platform {

struct ListDeleter {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using CurlList = std::unique_ptr<curl_slist, ListDeleter>;

CurlList MakeCurlList(const std::vector<std::string>& lines);
// Where connections really go, from NV_CONNECT_TO; empty if that is not set.
CurlList MakeConnectToList();

// Bytes that libcurl reads from a connection at a time: many, so that a large body needs few system calls.
inline constexpr long webReceiveSize = 512L * 1024;

// Sets all options that do not depend on who receives the reply. The lists and the body must outlive the transfer.
// False if one could not be set.
bool SetTransferOptions(CURL* easy, const std::string& url, const WebRequest& request, const TrustStore& trust,
                        curl_slist* headers, curl_slist* connectTo, std::string_view body);

}  // namespace platform

#endif
