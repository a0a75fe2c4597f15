// User IDs, passwords, e-mail addresses, network addresses and session tokens: which part of each counts when two are
// compared, and the form in which it is stored.
#ifndef NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_RULES_H
#define NVSUPPORT_SERVICE_ACCOUNTS_ACCOUNT_RULES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace nvsupport::service {

inline constexpr std::size_t credentialLength = 16;  // letters and digits that count
inline constexpr std::size_t shortestPassword = 6;
inline constexpr std::size_t tokenLength = 19;  // what a client's buffer holds

// Makes the cryptographic library ready; throws std::runtime_error if it cannot be used. Call it before the others.
void StartCryptography();

// What counts of a user ID or a password: its first 16 letters and digits, in lower case.
std::string CredentialKey(std::string_view text);

// What counts of an e-mail address: no blanks around it, lower case. Empty if it is no address.
std::string EmailKey(std::string_view text);

// What counts of the network address that a request comes from: all of an IPv4 address, the first half of an IPv6
// address, whose owner can use any second half.
std::string NetworkKey(const std::string& address);

// A salted Argon2id hash that names its own parameters.
std::string HashPassword(std::string_view credentialKey);
// Takes the same time wherever the two differ.
bool MatchesPassword(const std::string& hash, std::string_view credentialKey);
// True if the hash was made at another cost than HashPassword uses now.
bool NeedsNewHash(const std::string& hash);

// A random number for a new account, out of so many that no two accounts will get the same.
std::int64_t NewNumber();

// A fresh token: 19 random letters and digits, which is more than 112 bits.
std::string NewToken();
// The form in which a token is stored. It needs no salt, because a token is random itself.
std::string HashToken(std::string_view token);

}  // namespace nvsupport::service

#endif
