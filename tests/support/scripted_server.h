// A small HTTP server for tests: it records what it is sent and answers each request with the bytes of a script.
// Loopback, a port of the kernel's choice, a thread of its own that ends with the object. It serves one connection at a
// time, until the client closes it or opens another one. With an identity it speaks TLS.
#ifndef NVSUPPORT_TESTS_SUPPORT_SCRIPTED_SERVER_H
#define NVSUPPORT_TESTS_SUPPORT_SCRIPTED_SERVER_H

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

// Of OpenSSL.
struct evp_pkey_st;
struct ssl_ctx_st;
struct x509_st;

namespace nvsupport::testing {

struct Reply {
  // hold: nothing further comes; keep: the next request may come.
  enum class End { close, reset, hold, keep };

  std::string bytes;                   // as they go out, head and body
  End end = End::close;                // what happens behind the last byte
  std::size_t piece = 0;               // bytes sent at a time; 0: all at once
  std::chrono::milliseconds pause{0};  // before each piece but the first, and before the end
};

// A reply with a Content-Length, behind which the connection is kept. headers: further lines, each with its line end.
Reply HttpReply(int status, std::string_view body, std::string_view headers = {});
Reply NoReply();
// The first `count` bytes of a reply, then the connection's end.
Reply CutAfter(Reply reply, std::size_t count);

struct OpenSslDeleter {
  void operator()(evp_pkey_st* object) const;
  void operator()(ssl_ctx_st* object) const;
  void operator()(x509_st* object) const;
};

// What a TLS server shows of itself.
struct TlsIdentity {
  std::unique_ptr<x509_st, OpenSslDeleter> certificate;
  std::unique_ptr<evp_pkey_st, OpenSslDeleter> key;
};

class ScriptedServer {
 public:
  // Chooses the answer to a request. Called on the server's thread.
  using Script = std::function<Reply(const std::string& request)>;

  explicit ScriptedServer(Script script, const TlsIdentity* identity = nullptr);
  // One reply per request in this order; the last one for all that follow.
  explicit ScriptedServer(std::vector<Reply> replies, const TlsIdentity* identity = nullptr);
  ~ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  // From now on the reply begins when that many bytes of a request are there; the rest stays unread.
  void AnswerAfter(std::size_t bytes) { enough = bytes; }

  std::uint16_t Port() const { return port; }
  // Value of NV_CONNECT_TO that leads connections for host:port here.
  std::string ConnectTo(const std::string& host, int hostPort) const;
  // All requests so far, head and body, each as far as it was read when its reply begins.
  std::vector<std::string> Requests() const;
  // Connections so far, those without a complete request (or handshake) included.
  int Connections() const;

 private:
  class Channel;

  void Serve();
  // Reads a request and replies.
  Reply::End Answer(Channel& channel);
  // False if the client left the connection for another one.
  bool WaitForClient(int connection) const;

  Script script;
  std::unique_ptr<ssl_ctx_st, OpenSslDeleter> context;  // null: plain
  int listener = -1;
  std::uint16_t port = 0;

  std::atomic<std::size_t> enough{SIZE_MAX};

  mutable std::mutex mutex;  // guards what follows
  std::vector<std::string> requests;
  int connections = 0;
  int current = -1;  // descriptor of the connection that is being served
  bool stopping = false;

  std::thread thread;
};

}  // namespace nvsupport::testing

#endif
