// A throw-away certificate authority for tests of TLS: its certificate goes into SSL_CERT_FILE, its identities into
// scripted servers. Every object is another authority.
#ifndef NVSUPPORT_TESTS_SUPPORT_TEST_AUTHORITY_H
#define NVSUPPORT_TESTS_SUPPORT_TEST_AUTHORITY_H

#include <string>

#include "support/scripted_server.h"
#include "support/temporary_home.h"

namespace nvsupport::testing {

class TestAuthority {
 public:
  TestAuthority();

  // PEM.
  std::string Certificate() const;
  // For a server of that name; valid for a day before and after `now`, which is in seconds from the present time.
  TlsIdentity Issue(const std::string& host, long now = 0) const;
  // For a server of that name, vouched for by nobody.
  static TlsIdentity SelfSigned(const std::string& host);

 private:
  TlsIdentity own;
};

// One that the client trusts while the object lives.
class TrustedAuthority : public TestAuthority {
  const TemporaryFolder folder;
  const ScopedVariable store{"SSL_CERT_FILE", (WriteWholeFile(folder / "ca.pem", Certificate()), folder / "ca.pem")};
};

}  // namespace nvsupport::testing

#endif
