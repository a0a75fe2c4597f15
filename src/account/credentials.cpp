#include "account/credentials.h"

#include "base/ascii.h"

namespace nvsupport {
namespace {

constexpr std::string_view codedCharacters = "0123456789abcdefghijklmnopqrstuvwxyz";  // the codes from 1 on

// 0 for a character that does not count.
std::uint8_t CodeOf(char c) {
  return static_cast<std::uint8_t>(codedCharacters.find(base::ToLower(c)) + 1);
}

}  // namespace

Credential EncodeCredential(std::string_view text) {
  Credential codes{};
  std::size_t count = 0;
  for (const char c : text) {
    if (count == codes.size()) break;
    if (const std::uint8_t code = CodeOf(c); code != 0) codes[count++] = code;
  }
  return codes;
}

platform::SecretText DecodeCredential(const Credential& masked) {
  platform::SecretText text;
  text.Fill(masked.size(), [&](char* end, std::size_t) {
    std::size_t count = 0;
    for (const std::uint8_t code : MaskCredential(masked)) {
      if (code >= 1 && code <= codedCharacters.size()) end[count++] = codedCharacters[code - 1u];
    }
    return count;
  });
  return text;
}

Credential MaskCredential(const Credential& bytes) {
  Credential result = bytes;
  for (std::size_t at = 0; at < result.size(); ++at) result[at] ^= credentialMask[at];
  return result;
}

}  // namespace nvsupport
