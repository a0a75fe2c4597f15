// A small HTTP server for tests: it records what it is sent and answers each request with the bytes of a script.
// Loopback, a port of the kernel's choice, a thread of its own that ends with the object. It serves one connection at a
// time, until the client closes it or opens another one. With an identity it speaks TLS.
#ifndef NVSUPPORT_TESTS_SUPPORT_SCRIPTED_SERVER_H
#define NVSUPPORT_TESTS_SUPPORT_SCRIPTED_SERVER_H

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

// Of OpenSSL.
struct bio_st;
struct ssl_ctx_st;

namespace nvsupport::testing {

inline constexpr char serverName[] = "web.example";

struct Reply {
  // hold: nothing further comes; keep: the next request may come.
  enum class End { close, reset, hold, keep };

  std::string bytes;                   // as they go out, head and body
  End end = End::close;                // what happens behind the last byte
  std::size_t piece = 0;               // bytes sent at a time; 0: all at once
  std::chrono::milliseconds pause{0};  // behind each piece
};

// A reply with a Content-Length, behind which the connection is kept. headers: further lines, each with its line end.
Reply HttpReply(int status, std::string_view body, std::string_view headers = {});

// Chooses the answer to a request. Called on the server's thread.
struct Script : std::function<Reply(const std::string& request)> {
  using function::function;
  // The same one to all.
  Script(const Reply& reply) : Script(std::vector{reply}) {}
  // One per request in this order; the last one for all that follow.
  Script(std::vector<Reply> replies);
};

// What a TLS server shows of itself; nothing for a plain one.
using TlsIdentity = std::shared_ptr<ssl_ctx_st>;

class ScriptedServer {
 public:
  // As long as the object lives it stands for the host: on the port of TLS, and a plain one on that of HTTP, too. Of
  // several for one host the last one made counts.
  explicit ScriptedServer(Script script, const std::string& host = serverName, TlsIdentity identity = {});
  ~ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  // All requests so far, head and body, each as far as it was read when its reply begins.
  std::vector<std::string> Requests() const;
  // Connections so far, those without a complete request (or handshake) included.
  int Connections() const { return connections; }
  // Those that are still there.
  int Open() const { return connections - ended; }

 private:
  void Serve();
  // Reads a request and replies.
  Reply::End Answer(bio_st* channel);
  // False if the client left the connection for another one.
  bool WaitForClient(int connection) const;

  Script script;
  TlsIdentity identity;
  int listener;
  std::string route;
  std::atomic<int> connections = 0;
  std::atomic<int> ended = 0;
  mutable std::mutex mutex;  // guards what follows
  std::vector<std::string> requests;
  std::thread thread;
};

}  // namespace nvsupport::testing

#endif
