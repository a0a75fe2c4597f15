// One exchange through the published names of the web client, from its handles to its body.
#ifndef NVSUPPORT_TESTS_SUPPORT_EXCHANGE_H
#define NVSUPPORT_TESTS_SUPPORT_EXCHANGE_H

#include <string>

#include "platform/platform.h"
#include "support/scripted_server.h"

namespace nvsupport::testing {

struct Target {
  std::string host = serverName;
  std::string path = "x";
  DWORD flags = 0;  // 0: redirects are followed
  const char* verb = "GET";
};

class Exchange {
 public:
  explicit Exchange(const Target& target = {}) {
    internet = InternetOpenA("Norvane", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
    const bool secure = (target.flags & INTERNET_FLAG_SECURE) != 0;
    const INTERNET_PORT port = secure ? INTERNET_DEFAULT_HTTPS_PORT : INTERNET_DEFAULT_HTTP_PORT;
    connection = InternetConnectA(internet, target.host.c_str(), port, nullptr, nullptr, INTERNET_SERVICE_HTTP, 0, 0);
    request =
        HttpOpenRequestA(connection, target.verb, target.path.c_str(), nullptr, nullptr, nullptr, target.flags, 0);
  }
  ~Exchange() {
    for (const HINTERNET handle : {request, connection, internet}) InternetCloseHandle(handle);
  }
  Exchange(const Exchange&) = delete;
  Exchange& operator=(const Exchange&) = delete;

  bool Send(const std::string& header = {}, std::string body = {}) {
    return HttpSendRequestA(request, header.c_str(), static_cast<DWORD>(header.size()), body.data(),
                            static_cast<DWORD>(body.size())) != 0;
  }
  // 1000 if there is no status.
  DWORD Status() {
    DWORD status = 1000;
    DWORD size = sizeof status;
    HttpQueryInfoA(request, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size, nullptr);
    return status;
  }
  // The rest of the body, with "!" behind it if the transfer failed.
  std::string Body() {
    std::string body;
    char part[4096];
    DWORD got = 0;
    while (InternetReadFile(request, part, sizeof part, &got)) {
      if (got == 0) return body;
      body.append(part, got);
    }
    return body + "!";
  }
  // The body of the reply, "!" if there is no reply.
  std::string Fetch(const std::string& body = {}) { return Send({}, body) ? Body() : "!"; }

  HINTERNET internet;
  HINTERNET connection;
  HINTERNET request;
};

}  // namespace nvsupport::testing

#endif
