// A scripted server that stands for one host, on both its ports, as long as the object lives.
#ifndef NVSUPPORT_TESTS_WEBFILE_ROUTED_SERVER_H
#define NVSUPPORT_TESTS_WEBFILE_ROUTED_SERVER_H

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
  explicit RoutedServer(const Reply& reply) : RoutedServer(std::vector<Reply>{reply}) {}
  // answers: as of ScriptedServer.
  template <typename Answers>
  requires(!std::is_convertible_v<Answers, Reply>) explicit RoutedServer(Answers answers,
                                                                         const TlsIdentity* identity = nullptr)
      : ScriptedServer(std::move(answers), identity) {}

 private:
  ScopedVariable route{"NV_CONNECT_TO", ConnectTo(serverName, 80) + "," + ConnectTo(serverName, 443)};
};

}  // namespace nvsupport::testing

#endif
