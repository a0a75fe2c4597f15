// A throw-away certificate authority for tests of TLS, which the client trusts while the object lives, and no other
// one. Every object is another authority.
#ifndef NVSUPPORT_TESTS_SUPPORT_TEST_AUTHORITY_H
#define NVSUPPORT_TESTS_SUPPORT_TEST_AUTHORITY_H

#include <string>

#include "support/scripted_server.h"
#include "support/temporary_home.h"

namespace nvsupport::testing {

class TestAuthority {
 public:
  TestAuthority();

  // For a server of that name; valid for a day before and after `now`, which is in seconds from the present time.
  TlsIdentity Issue(const std::string& host, long now = 0) const;
  // For a server of that name, vouched for by nobody.
  static TlsIdentity SelfSigned(const std::string& host);

 private:
  const TemporaryFolder folder;
  const ScopedVariable trust{"SSL_CERT_FILE", folder / "ca.pem"};
  const TlsIdentity own;
};

}  // namespace nvsupport::testing

#endif
