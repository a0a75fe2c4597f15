#include "support/test_authority.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace nvsupport::testing {
namespace {

constexpr long day = 24L * 60 * 60;

void AddExtension(X509* certificate, int kind, const std::string& value) {
  X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.c_str());
  X509_add_ext(certificate, extension, -1);
  X509_EXTENSION_free(extension);
}

// issuer: null for one that vouches for itself. host: empty for an authority.
TlsIdentity Make(const std::string& host, long now, const TlsIdentity* issuer) {
  static long serial = 0;
  TlsIdentity made{.certificate = {X509_new(), X509_free}, .key = {EVP_EC_gen("P-256"), EVP_PKEY_free}};
  X509* const subject = made.certificate.get();
  const TlsIdentity& voucher = issuer != nullptr ? *issuer : made;
  X509_set_version(subject, X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(subject), ++serial);
  X509_gmtime_adj(X509_getm_notBefore(subject), now - day);
  X509_gmtime_adj(X509_getm_notAfter(subject), now + day);
  X509_set_pubkey(subject, made.key.get());
  const std::string name = host.empty() ? "Throw-away authority" : host;
  X509_NAME_add_entry_by_txt(X509_get_subject_name(subject), "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
  X509_set_issuer_name(subject, X509_get_subject_name(voucher.certificate.get()));
  AddExtension(subject, NID_basic_constraints, host.empty() ? "critical,CA:TRUE" : "critical,CA:FALSE");
  if (!host.empty()) AddExtension(subject, NID_subject_alt_name, "DNS:" + host);
  X509_sign(subject, voucher.key.get(), EVP_sha256());
  return made;
}

}  // namespace

TestAuthority::TestAuthority() : own(Make("", 0, nullptr)) {
  std::FILE* const file = std::fopen((folder / "ca.pem").c_str(), "w");
  PEM_write_X509(file, own.certificate.get());
  std::fclose(file);
}

TlsIdentity TestAuthority::Issue(const std::string& host, long now) const {
  return Make(host, now, &own);
}

TlsIdentity TestAuthority::SelfSigned(const std::string& host) {
  return Make(host, 0, nullptr);
}

}  // namespace nvsupport::testing
