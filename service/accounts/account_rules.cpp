#include "service/accounts/account_rules.h"

#include <arpa/inet.h>
#include <sodium.h>

#include <array>
#include <stdexcept>

#include "service/counters.h"
#include "src/base/ascii.h"

namespace nvsupport::service {
namespace {

// The cost of a hash: some 20 ms on a desktop machine, and little enough memory for many processes at a time.
constexpr unsigned long long hashPasses = 2;
constexpr std::size_t hashMemory = 19UL * 1024 * 1024;
constexpr std::size_t tokenHashBytes = 32;
constexpr std::string_view tokenAlphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

}  // namespace

void StartCryptography() {
  if (sodium_init() < 0) throw std::runtime_error("cryptography is not available");
}

std::string CredentialKey(std::string_view text) {
  std::string key;
  for (const char c : text) {
    if (key.size() == credentialLength) break;
    if (base::IsLetterOrDigit(c)) key.push_back(base::ToLower(c));
  }
  return key;
}

std::string EmailKey(std::string_view text) {
  text = base::Trim(text, " ");
  const std::size_t at = text.find('@');
  if (at == 0 || at == std::string_view::npos) return {};
  if (text.find(' ') != std::string_view::npos || base::HasControlCharacters(text)) return {};
  const std::string_view domain = text.substr(at + 1);
  const std::size_t dot = domain.find('.');
  const bool valid = dot != 0 && dot != std::string_view::npos && domain.back() != '.' &&
                     domain.find('@') == std::string_view::npos && domain.find("..") == std::string_view::npos;
  return valid ? base::ToLower(text) : std::string();
}

std::string NetworkKey(const std::string& address) {
  constexpr std::string_view mappedIpv4 = "::ffff:";
  if (address.starts_with(mappedIpv4) && address.find('.') != std::string::npos) {
    return address.substr(mappedIpv4.size());
  }
  in6_addr parsed = {};
  if (inet_pton(AF_INET6, address.c_str(), &parsed) != 1) return address;
  std::fill(parsed.s6_addr + sizeof parsed / 2, parsed.s6_addr + sizeof parsed, std::uint8_t{0});
  std::array<char, INET6_ADDRSTRLEN> text = {};
  return inet_ntop(AF_INET6, &parsed, text.data(), text.size());
}

std::string HashPassword(std::string_view credentialKey) {
  const HashInProgress counted;
  std::array<char, crypto_pwhash_STRBYTES> hash;
  if (crypto_pwhash_str(hash.data(), credentialKey.data(), credentialKey.size(), hashPasses, hashMemory) != 0) {
    throw std::runtime_error("no memory to hash a password");
  }
  return hash.data();
}

bool MatchesPassword(const std::string& hash, std::string_view credentialKey) {
  const HashInProgress counted;
  return crypto_pwhash_str_verify(hash.c_str(), credentialKey.data(), credentialKey.size()) == 0;
}

bool NeedsNewHash(const std::string& hash) {
  return crypto_pwhash_str_needs_rehash(hash.c_str(), hashPasses, hashMemory) != 0;
}

std::int64_t NewNumber() {
  std::uint64_t number = 0;
  randombytes_buf(&number, sizeof number);
  return static_cast<std::int64_t>(number >> 1);
}

std::string NewToken() {
  std::string token(tokenLength, '\0');
  for (char& c : token) c = tokenAlphabet[randombytes_uniform(static_cast<std::uint32_t>(tokenAlphabet.size()))];
  return token;
}

std::string HashToken(std::string_view token) {
  std::array<unsigned char, tokenHashBytes> hash;
  crypto_generichash(hash.data(), hash.size(), reinterpret_cast<const unsigned char*>(token.data()), token.size(),
                     nullptr, 0);
  std::string text;
  for (const unsigned char byte : hash) base::AppendHexByte(text, byte);
  return text;
}

}  // namespace nvsupport::service
