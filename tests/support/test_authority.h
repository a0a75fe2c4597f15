// Issues certificates for test servers. While the object lives, the client trusts these and no others.
#ifndef NVSUPPORT_TESTS_SUPPORT_TEST_AUTHORITY_H
#define NVSUPPORT_TESTS_SUPPORT_TEST_AUTHORITY_H

#include <openssl/ssl.h>

#include <string>

#include "support/run_program.h"
#include "support/scripted_server.h"
#include "support/temporary_home.h"

namespace nvsupport::testing {

class TestAuthority {
 public:
  TestAuthority() {}  // so that one may be constant

  // The certificate for a server of that name, the same each time. Make it before the client's first TLS connection.
  TlsIdentity Issue(const std::string& host) const {
    const std::string file = folder / host;
    constexpr const char* make =
        R"(test -e "$2" || openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes \
        -subj "/CN=$1" -addext "subjectAltName=DNS:$1" -keyout "$2" -out "$2" 2>&1 && cat "$2" >>"$3")";
    RunProgram({"sh", "-c", make, "sh", host, file, trusted});
    const TlsIdentity identity(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    SSL_CTX_use_certificate_file(identity.get(), file.c_str(), SSL_FILETYPE_PEM);
    SSL_CTX_use_PrivateKey_file(identity.get(), file.c_str(), SSL_FILETYPE_PEM);
    return identity;
  }

 private:
  const TemporaryFolder folder;
  const std::string trusted = folder / "trusted.pem";
  const ScopedVariable trust{"SSL_CERT_FILE", trusted};
};

}  // namespace nvsupport::testing

#endif
