// A throw-away certificate authority for tests of TLS: its certificate goes into SSL_CERT_FILE, its identities into
// scripted servers. Every object is another authority.
#ifndef NVSUPPORT_TESTS_SUPPORT_TEST_AUTHORITY_H
#define NVSUPPORT_TESTS_SUPPORT_TEST_AUTHORITY_H

#include <memory>
#include <string>

#include "support/scripted_server.h"

struct evp_pkey_st;  // of OpenSSL
struct x509_st;

namespace nvsupport::testing {

class TestAuthority {
 public:
  TestAuthority();
  TestAuthority(const TestAuthority&) = delete;
  TestAuthority& operator=(const TestAuthority&) = delete;
  ~TestAuthority();

  // PEM.
  std::string Certificate() const;
  // For a server of that name; valid for a day before and after `now`, which is in seconds from the present time.
  TlsIdentity Issue(const std::string& host, long now = 0) const;
  // For a server of that name, vouched for by nobody.
  static TlsIdentity SelfSigned(const std::string& host);

 private:
  struct Deleter {
    void operator()(evp_pkey_st* key) const;
    void operator()(x509_st* certificate) const;
  };
  using Key = std::unique_ptr<evp_pkey_st, Deleter>;
  using X509Certificate = std::unique_ptr<x509_st, Deleter>;

  static X509Certificate Make(evp_pkey_st* subjectKey, const std::string& name, bool authority, long now,
                              x509_st* issuer, evp_pkey_st* issuerKey);

  Key key;
  X509Certificate certificate;
};

}  // namespace nvsupport::testing

#endif
