// A scripted server that stands for one host, on both its ports, as long as the object lives.
#ifndef NVSUPPORT_TESTS_SUPPORT_ROUTED_SERVER_H
#define NVSUPPORT_TESTS_SUPPORT_ROUTED_SERVER_H

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/scripted_server.h"
#include "support/temporary_home.h"

namespace nvsupport::testing {

inline constexpr char serverName[] = "web.example";

class RoutedServer : public ScriptedServer {
 public:
  // The same answer to all.
  explicit RoutedServer(const Reply& reply, const std::string& host = serverName)
      : RoutedServer(std::vector{reply}, nullptr, host) {}
  // answers: as of ScriptedServer.
  template <typename Answers>
  requires(!std::is_convertible_v<Answers, Reply>) explicit RoutedServer(Answers answers,
                                                                         const TlsIdentity* identity = nullptr,
                                                                         const std::string& host = serverName)
      : ScriptedServer(std::move(answers), identity),
        route("NV_CONNECT_TO", ConnectTo(host, 80) + "," + ConnectTo(host, 443)) {}

 private:
  ScopedVariable route;
};

}  // namespace nvsupport::testing

#endif
