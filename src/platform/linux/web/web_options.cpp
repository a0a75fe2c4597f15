// The options of a transfer.
#include "web/web_options.h"

#include <sys/auxv.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <new>

#include "trace.h"
#include "web/web_limits.h"

namespace platform {
namespace {

// Sets options one after the other and remembers if one failed.
class Options {
 public:
  explicit Options(CURL* transfer) : easy(transfer) {}
  template <typename Value>
  void Set(CURLoption option, Value value) {
    good = curl_easy_setopt(easy, option, value) == CURLE_OK && good;
  }
  bool Good() const { return good; }

 private:
  CURL* easy;
  bool good = true;
};

void SetTrust(Options& options, const TrustStore& trust) {
  options.Set(CURLOPT_SSL_VERIFYPEER, 1L);
  options.Set(CURLOPT_SSL_VERIFYHOST, 2L);
  if (trust.file.empty() && trust.folders.empty()) return;
  // Null switches the system's folder off. libcurl keeps a parsed store only if it comes from a file alone; with a
  // folder it reads the store again for each connection.
  options.Set(CURLOPT_CAINFO, trust.file.empty() ? nullptr : trust.file.c_str());
  options.Set(CURLOPT_CAPATH, trust.folders.empty() ? nullptr : trust.folders.c_str());
  // A connection that resumes a TLS session is not verified again.
  if (!trust.folders.empty()) options.Set(CURLOPT_SSL_SESSIONID_CACHE, 0L);
}

// Programs that the host starts must not inherit the connections.
curl_socket_t OpenSocket(void*, curlsocktype, curl_sockaddr* address) {
  return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

// HOST:PORT:TO-HOST:TO-PORT, where a host may be an address with colons in brackets.
bool IsConnectToEntry(std::string_view entry) {
  int colons = 0;
  bool inBrackets = false;
  for (const char c : entry) {
    if (c == '[' || c == ']') inBrackets = c == '[';
    if (c == ':' && !inBrackets) ++colons;
  }
  return colons == 3;
}

}  // namespace

CurlList MakeCurlList(const std::vector<std::string>& lines) {
  CurlList list;
  for (const std::string& line : lines) {
    curl_slist* longer = curl_slist_append(list.get(), line.c_str());
    if (longer == nullptr) throw std::bad_alloc();
    static_cast<void>(list.release());
    list.reset(longer);
  }
  return list;
}

CurlList MakeConnectToList() {
  const char* const variable = secure_getenv("NV_CONNECT_TO");
  std::string_view rest = variable != nullptr ? variable : "";
  std::vector<std::string> entries;
  while (!rest.empty()) {
    const std::string entry(rest.substr(0, rest.find(',')));
    rest.remove_prefix(std::min(rest.size(), entry.size() + 1));
    if (!IsConnectToEntry(entry)) Trace(TraceArea::web, "NV_CONNECT_TO: \"%s\" is malformed", entry.c_str());
    entries.push_back(entry);
  }
  return MakeCurlList(entries);
}

bool SetTransferOptions(CURL* easy, const std::string& url, const WebRequest& request, const TrustStore& trust,
                        curl_slist* headers, curl_slist* connectTo, std::string_view body) {
  Options options(easy);
  options.Set(CURLOPT_URL, url.c_str());
  options.Set(CURLOPT_PATH_AS_IS, 1L);
  options.Set(CURLOPT_PROTOCOLS_STR, "http,https");
  options.Set(CURLOPT_DISALLOW_USERNAME_IN_URL, 1L);
  options.Set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  options.Set(CURLOPT_HTTPHEADER, headers);
  options.Set(CURLOPT_CONNECT_TO, connectTo);
  if (request.post) {
    options.Set(CURLOPT_POST, 1L);
    options.Set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    options.Set(CURLOPT_POSTFIELDS, body.empty() ? "" : body.data());
  }
  SetTrust(options, trust);
  options.Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(webLimits.connect.count()));
  // libcurl looks names up on a thread that cannot be interrupted. Waiting for its end could outlast the time-out.
  options.Set(CURLOPT_QUICK_EXIT, 1L);
  options.Set(CURLOPT_OPENSOCKETFUNCTION, &OpenSocket);
  options.Set(CURLOPT_BUFFERSIZE, webReceiveSize);
  options.Set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  // No signals: those of the process are the host's.
  options.Set(CURLOPT_NOSIGNAL, 1L);
  // In a process with more rights than its user, the user's environment must not choose the way.
  if (getauxval(AT_SECURE) != 0) options.Set(CURLOPT_PROXY, "");
  return options.Good();
}

}  // namespace platform
