// A small HTTP server for tests. It records the requests and answers each with bytes that the test chooses. It listens
// on loopback, on a port of the kernel's choice, and runs on a thread that ends with the object. It serves one
// connection at a time, until the client closes it or opens another one. With an identity it speaks TLS.
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

  std::string bytes;                   // head and body, as they are sent
  End end = End::close;                // what happens behind the last byte
  std::size_t piece = 0;               // bytes sent at a time; 0: all at once
  std::chrono::milliseconds pause{0};  // behind each piece
};

// A reply with a Content-Length, after which the connection stays open. headers: further lines, each with its line end.
Reply HttpReply(int status, std::string_view body, std::string_view headers = {});

// Chooses the reply to a request. Called on the server's thread.
struct Script : std::function<Reply(const std::string& request)> {
  using function::function;
  // The same reply to all requests.
  Script(const Reply& reply) : Script(std::vector{reply}) {}
  // One reply for each request, in this order; the last one for all further requests.
  Script(std::vector<Reply> replies);
};

// The certificate and key of a TLS server; nothing for a plain server.
using TlsIdentity = std::shared_ptr<ssl_ctx_st>;

class ScriptedServer {
 public:
  // As long as the object lives, connections to the host come here: to its TLS port, and for a plain server also to its
  // HTTP port. If several servers stand for one host, the one made last gets them.
  explicit ScriptedServer(Script script, const std::string& host = serverName, TlsIdentity identity = {});
  ~ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  // All requests so far, head and body, as far as each was read before its reply.
  std::vector<std::string> Requests() const;
  // Connections so far, those without a complete request (or handshake) included.
  int Connections() const { return connections; }
  // Connections that are still open.
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
