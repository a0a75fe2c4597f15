#include "sip_hash.h"

#include <bit>
#include <cstddef>

namespace platform {
namespace {

struct State {
  std::uint64_t a, b, c, d;

  void Round() {
    a += b;
    b = std::rotl(b, 13) ^ a;
    a = std::rotl(a, 32);
    c += d;
    d = std::rotl(d, 16) ^ c;
    a += d;
    d = std::rotl(d, 21) ^ a;
    c += b;
    b = std::rotl(b, 17) ^ c;
    c = std::rotl(c, 32);
  }

  void Absorb(std::uint64_t word) {
    d ^= word;
    Round();
    Round();
    a ^= word;
  }
};

// Up to 8 bytes as a number, the first byte lowest.
std::uint64_t Word(std::string_view bytes) {
  std::uint64_t word = 0;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    word |= std::uint64_t{static_cast<unsigned char>(bytes[at])} << (8 * at);
  }
  return word;
}

}  // namespace

std::uint64_t SipHash(const SipKey& key, std::string_view text) {
  State state{key.low ^ 0x736f6d6570736575, key.high ^ 0x646f72616e646f6d, key.low ^ 0x6c7967656e657261,
              key.high ^ 0x7465646279746573};
  const std::uint64_t length = text.size();
  for (; text.size() >= 8; text.remove_prefix(8)) state.Absorb(Word(text.substr(0, 8)));
  state.Absorb(length << 56 | Word(text));
  state.c ^= 0xFF;
  for (int round = 0; round < 4; ++round) state.Round();
  return state.a ^ state.b ^ state.c ^ state.d;
}

}  // namespace platform
