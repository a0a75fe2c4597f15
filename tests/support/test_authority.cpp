#include "support/test_authority.h"

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace nvsupport::testing {
namespace {

constexpr long day = 24L * 60 * 60;

// What a writer of PEM gives for `object`.
template <typename Object, typename Writer>
std::string Pem(Object* object, Writer write) {
  BIO* const memory = BIO_new(BIO_s_mem());
  write(memory, object);
  char* text = nullptr;
  const long length = BIO_get_mem_data(memory, &text);
  std::string pem(text, static_cast<std::size_t>(length));
  BIO_free(memory);
  return pem;
}

std::string CertificatePem(X509* certificate) {
  return Pem(certificate, [](BIO* memory, X509* object) { PEM_write_bio_X509(memory, object); });
}

std::string KeyPem(EVP_PKEY* key) {
  return Pem(key, [](BIO* memory, EVP_PKEY* object) {
    PEM_write_bio_PrivateKey(memory, object, nullptr, nullptr, 0, nullptr, nullptr);
  });
}

void AddExtension(X509* certificate, int kind, const std::string& value) {
  X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.c_str());
  X509_add_ext(certificate, extension, -1);
  X509_EXTENSION_free(extension);
}

}  // namespace

void TestAuthority::Deleter::operator()(evp_pkey_st* object) const {
  EVP_PKEY_free(object);
}
void TestAuthority::Deleter::operator()(x509_st* object) const {
  X509_free(object);
}

TestAuthority::X509Certificate TestAuthority::Make(evp_pkey_st* subjectKey, const std::string& name, bool authority,
                                                   long now, x509_st* issuer, evp_pkey_st* issuerKey) {
  static long serial = 0;
  X509Certificate made(X509_new());
  X509* const subject = made.get();
  X509_set_version(subject, X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(subject), ++serial);
  X509_gmtime_adj(X509_getm_notBefore(subject), now - day);
  X509_gmtime_adj(X509_getm_notAfter(subject), now + day);
  X509_set_pubkey(subject, subjectKey);
  X509_NAME_add_entry_by_txt(X509_get_subject_name(subject), "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
  X509_set_issuer_name(subject, X509_get_subject_name(issuer != nullptr ? issuer : subject));
  AddExtension(subject, NID_basic_constraints, authority ? "critical,CA:TRUE" : "critical,CA:FALSE");
  if (!authority) AddExtension(subject, NID_subject_alt_name, "DNS:" + name);
  X509_sign(subject, issuerKey, EVP_sha256());
  return made;
}

TestAuthority::TestAuthority() : key(EVP_EC_gen("P-256")) {
  certificate = Make(key.get(), "Throw-away authority", true, 0, nullptr, key.get());
}

TestAuthority::~TestAuthority() = default;

std::string TestAuthority::Certificate() const {
  return CertificatePem(certificate.get());
}

TlsIdentity TestAuthority::Issue(const std::string& host, long now) const {
  const Key subjectKey(EVP_EC_gen("P-256"));
  const X509Certificate subject = Make(subjectKey.get(), host, false, now, certificate.get(), key.get());
  return {CertificatePem(subject.get()), KeyPem(subjectKey.get())};
}

TlsIdentity TestAuthority::SelfSigned(const std::string& host) {
  const Key subjectKey(EVP_EC_gen("P-256"));
  const X509Certificate subject = Make(subjectKey.get(), host, false, 0, nullptr, subjectKey.get());
  return {CertificatePem(subject.get()), KeyPem(subjectKey.get())};
}

}  // namespace nvsupport::testing
