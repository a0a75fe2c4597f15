// The server of the web benchmarks, server.py, in a process of its own that ends with this one.
#ifndef NVSUPPORT_BENCH_LOCAL_SERVER_H
#define NVSUPPORT_BENCH_LOCAL_SERVER_H

#include <string>

namespace nvsupport::bench {

inline constexpr char webHost[] = "web.example";
inline constexpr char delayedHost[] = "far.example";  // the same server, 25 ms away
inline constexpr char serviceHost[] = NV_SERVICE_HOST;
inline constexpr int delay = 25;  // ms each way

struct LocalServer {
  int plain = 0;         // ports
  int tls = 0;           //
  int delayedPlain = 0;  //
  int delayedTls = 0;    //
  std::string trust;     // the trust store that knows its certificate
};

// Starts it at the first call.
const LocalServer& Server();
// The value for NV_CONNECT_TO, or an entry of a list for CURLOPT_CONNECT_TO.
inline std::string Route(const std::string& host, int hostPort, int port) {
  return host + ':' + std::to_string(hostPort) + ":127.0.0.1:" + std::to_string(port);
}

}  // namespace nvsupport::bench

#endif
