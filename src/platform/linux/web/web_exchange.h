// One HTTP exchange over libcurl: it sends the request, receives the head of the reply, and the body is pulled. Used by
// the web client; has a transfer engine to itself, which it gives back in the end. libcurl is driven only while the
// caller waits.
#ifndef NVSUPPORT_PLATFORM_LINUX_WEB_EXCHANGE_H
#define NVSUPPORT_PLATFORM_LINUX_WEB_EXCHANGE_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/process_wide.h"
#include "platform/secret.h"
#include "web/web_engine.h"
#include "web/web_options.h"
#include "web/web_request.h"
#include "web_transfer.h"

namespace platform {

class WebExchange final : public WebTransfer {
 public:
  WebExchange() = default;
  WebExchange(const WebExchange&) = delete;
  WebExchange& operator=(const WebExchange&) = delete;
  ~WebExchange() override;

  bool Send(WebRequest request, std::string_view extraHeader, std::string_view body) override;
  std::optional<std::size_t> Read(char* data, std::size_t size) override;
  bool HasHead() const override { return headDone; }
  long StatusCode() const override;
  std::optional<std::int64_t> ContentLength() const override;
  const char* Header(const char* name) const override;

 private:
  enum class Phase { running, ended, failed };
  using Clock = std::chrono::steady_clock;

  static int OnRequest(void* exchange, char* remote, char* local, int remotePort, int localPort);
  static std::size_t OnHead(char* data, std::size_t unit, std::size_t size, void* exchange);
  static std::size_t OnBody(char* data, std::size_t unit, std::size_t size, void* exchange);

  // Ends the transfer, if there is one, and gives the engine back.
  void Release();
  // Sends one request and waits for the head of its reply.
  bool SendOnce(const std::string& url, const WebRequest& request, std::string_view extraHeader, std::string_view body,
                Clock::time_point until);
  // Where the reply to `url` sends the client, empty if this reply is the final one.
  std::string RedirectTarget(const std::string& url) const;
  bool HasUnread() const { return engine && engine->Window().HasUnread(); }
  // Lets libcurl work and waits, in turn, until `done` is true or the transfer ends; at its time limit it is ended.
  template <typename Done>
  void Drive(Clock::time_point until, Done done);
  // Lets libcurl do what it can without waiting.
  void Advance();
  void Wait(Clock::time_point until);
  void End(CURLcode result);
  // How far the transfer came, for the trace.
  void TraceEnd(CURLcode result) const;

  // What is process-wide stays as long as this is there; once that is gone nothing can be sent.
  const base::Call call;

  // Each is needed by those below it. The body is a copy: the server may reply before it has taken all of it, and from
  // then on the caller may change its buffer.
  SecretVector<char> sentBody;
  CurlList headers;
  CurlList connectTo;
  std::unique_ptr<WebEngine> engine;

  Phase phase = Phase::failed;
  Clock::time_point start;            // of the whole exchange
  char reason[CURL_ERROR_SIZE] = {};  // libcurl's own text for a failure
  bool isSecret = false;              // the exchange goes over TLS: the reply is wiped in libcurl's buffer
  bool once = false;                  // the request must not go out a second time
  bool begun = false;                 // a connection is there, and the request goes out
  bool headDone = false;
  std::size_t headBytes = 0;
  Clock::time_point lastMoment = Clock::time_point::max();  // of the whole exchange
  std::size_t bodyRoom = SIZE_MAX;                          // bytes that the body may still have
  bool paused = false;                                      // libcurl holds back a piece of the body that did not fit
};

}  // namespace platform

#endif
