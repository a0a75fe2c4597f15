// nvhost token: prints a session token for the account pages. If necessary the library's dialogs sign the user in.
#include <array>
#include <cstdio>

#include "commands.h"
#include "system.h"
#include "terminal/printable.h"

namespace nvhost {
namespace {

constexpr std::size_t tokenSize = 20;  // with its terminator

}  // namespace

void Token(const NVSupportModule& support, const std::string& product) {
  std::array<char, tokenSize> token = {};
  support.openSession(product.c_str());
  if (!support.sessionToken(nullptr, token.data())) {
    if (!HasScreen()) {
      throw Failure(
          noScreen,
          "no token: there is no screen for the sign-in; or, where the password is saved, the service refused "
          "it or is out of reach");
    }
    throw Failure(noToken, "no token: the sign-in was cancelled or refused, or the service is out of reach");
  }
  std::puts(Printable(token.data()).text.c_str());
}

}  // namespace nvhost
