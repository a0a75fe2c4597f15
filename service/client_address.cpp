#include "service/client_address.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>

#include "service/settings.h"
#include "src/base/ascii.h"

namespace nvsupport::service {
namespace {

constexpr unsigned allBits = 128;
constexpr unsigned bitsBeforeIpv4 = 96;  // in front of an IPv4 address that is written as IPv6
using Address = std::array<std::uint8_t, allBits / 8>;

// IPv4 as "::ffff:a.b.c.d", where a number without dots would be taken, too.
std::optional<Address> Parse(std::string text) {
  if (text.find(':') == std::string::npos && text.find('.') != std::string::npos) text = "::ffff:" + text;
  Address address = {};
  if (inet_pton(AF_INET6, text.c_str(), address.data()) != 1) return std::nullopt;
  return address;
}

bool IsWithin(const Address& address, std::string_view range) {
  const std::size_t slash = range.find('/');
  const std::string base(range.substr(0, slash));
  const auto from = Parse(base);
  unsigned bits = allBits;
  if (slash != std::string_view::npos) {
    const std::string_view number = range.substr(slash + 1);
    if (std::from_chars(number.data(), number.data() + number.size(), bits).ec != std::errc()) return false;
    if (base.find(':') == std::string::npos) bits += bitsBeforeIpv4;
  }
  if (!from || bits > allBits) return false;
  for (unsigned bit = 0; bit < bits; ++bit) {
    if (((address[bit / 8] ^ (*from)[bit / 8]) >> (7 - bit % 8) & 1) != 0) return false;
  }
  return true;
}

// Removes the last item from a list with commas, and returns it.
std::string_view TakeLast(std::string_view& list) {
  const std::size_t comma = list.rfind(',');
  const std::string_view last = comma == std::string_view::npos ? list : list.substr(comma + 1);
  list = comma == std::string_view::npos ? std::string_view() : list.substr(0, comma);
  return base::Trim(last, " \t");
}

}  // namespace

bool IsTrustedProxy(const std::string& address) {
  const std::string trusted = Setting("NV_TRUSTED_PROXIES");
  const auto parsed = Parse(address);
  if (!parsed) return false;
  for (std::string_view rest = trusted; !rest.empty();) {
    if (IsWithin(*parsed, TakeLast(rest))) return true;
  }
  return false;
}

std::string ClientAddress(const std::string& peer, const std::string& forwarded) {
  std::string address = peer;
  for (std::string_view rest = forwarded; !rest.empty() && IsTrustedProxy(address);) {
    std::string before(TakeLast(rest));
    if (!Parse(before)) break;
    address = std::move(before);
  }
  return address;
}

}  // namespace nvsupport::service
