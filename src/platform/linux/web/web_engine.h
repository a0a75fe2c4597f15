// Transfer engines: libcurl with all that it keeps from one exchange to the next, that is open connections, TLS
// sessions, resolved names and the parsed trust store. A few idle between exchanges. Used by WebExchange.
#ifndef NVSUPPORT_PLATFORM_LINUX_WEB_ENGINE_H
#define NVSUPPORT_PLATFORM_LINUX_WEB_ENGINE_H

#include <curl/curl.h>
#include <sys/types.h>

#include <chrono>
#include <memory>

namespace platform {

struct EasyDeleter {
  void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct MultiDeleter {
  void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};

// One exchange uses it at a time.
class WebEngine {
 public:
  // Throws std::bad_alloc.
  WebEngine();
  ~WebEngine();
  WebEngine(const WebEngine&) = delete;
  WebEngine& operator=(const WebEngine&) = delete;

  CURL* Easy() const { return easy.get(); }
  CURLM* Multi() const { return multi.get(); }
  // False in a child that the host has forked: the connections are its parent's.
  bool IsOfThisProcess() const;

  std::chrono::steady_clock::time_point idleSince;

 private:
  const pid_t owner;
  std::unique_ptr<CURLM, MultiDeleter> multi;
  std::unique_ptr<CURL, EasyDeleter> easy;
};

// Keeps libcurl's code in memory to the end of the process.
void PinCurl();

// For one exchange: one that idled, the last first, or a new one. Initialises libcurl at the first call.
std::unique_ptr<WebEngine> TakeWebEngine();
// No transfer is in it any more.
void GiveBackWebEngine(std::unique_ptr<WebEngine> engine);

}  // namespace platform

#endif
