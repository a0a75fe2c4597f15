// A transfer engine is what libcurl keeps from one exchange to the next: an open connection, TLS sessions, resolved
// names and the parsed trust store. Some engines idle between exchanges. Used by WebExchange.
#ifndef NVSUPPORT_PLATFORM_LINUX_WEB_ENGINE_H
#define NVSUPPORT_PLATFORM_LINUX_WEB_ENGINE_H

#include <curl/curl.h>
#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

#include "web/receive_window.h"
#include "web/web_trust.h"

namespace platform {

struct EasyDeleter {
  void operator()(CURL* easy) const;
};
struct MultiDeleter {
  void operator()(CURLM* multi) const;
};
struct ShareDeleter {
  void operator()(CURLSH* share) const;
};

// What an engine is for. All that it keeps is used for this alone.
struct WebPeer {
  std::string origin;  // scheme, host and port
  TrustStore trust;    // over TLS

  bool operator==(const WebPeer&) const = default;
};

// One exchange uses it at a time. Of its connections libcurl keeps the one that was used last.
class WebEngine {
 public:
  // Throws std::bad_alloc.
  explicit WebEngine(WebPeer peer);
  ~WebEngine();
  WebEngine(const WebEngine&) = delete;
  WebEngine& operator=(const WebEngine&) = delete;

  // Of the transfer that has begun.
  CURL* Easy() const { return easy.get(); }
  CURLM* Multi() const { return multi.get(); }
  // Empty between exchanges.
  ReceiveWindow& Window() { return window; }
  const WebPeer& Peer() const { return peer; }
  // Of all that there are, in use or idle.
  static std::size_t Count() { return count; }
  // False in a child that the host has forked: the connection is its parent's.
  bool IsOfThisProcess() const;
  std::chrono::milliseconds IdleTime() const;

  // True if its connection, if there is one, may carry another request: it idled no longer than that, it is open, and
  // nothing came on it meanwhile, which would be read as the reply.
  bool CanReuse(std::chrono::milliseconds longestIdle) const;
  // Throws std::bad_alloc.
  void BeginTransfer();
  // A request goes out on a connection.
  void BeginRequest();
  // Ends the transfer's use of the engine. whole: the reply came to its end.
  void EndTransfer(bool whole);

 private:
  bool HasUnreadTls() const;

  static constinit inline std::atomic<std::size_t> count = 0;

  const WebPeer peer;
  const pid_t owner;
  std::unique_ptr<CURLSH, ShareDeleter> sessions;  // of TLS
  std::unique_ptr<CURLM, MultiDeleter> multi;
  std::unique_ptr<CURL, EasyDeleter> easy;
  curl_socket_t connection = CURL_SOCKET_BAD;  // the one that is kept
  curl_tlssessioninfo tls{};                   // of the connection of the latest request
  std::chrono::milliseconds idleSince{};
  ReceiveWindow window;
};

// Keeps libcurl's code in memory to the end of the process.
void PinCurl();

// Takes an engine and begins a transfer: the one that came back last, or a new one. Closes engines that idled for too
// long, or whose servers were verified by a trust store that has changed. Initialises libcurl at the first call. Throws
// std::bad_alloc.
std::unique_ptr<WebEngine> TakeWebEngine(const WebPeer& peer);
// Gives an engine back that has no transfer any more.
void GiveBackWebEngine(std::unique_ptr<WebEngine> engine);

}  // namespace platform

#endif
