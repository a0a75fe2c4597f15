// nvhost token: a session token for the account pages. The library's dialogs sign the user in when it is needed.
#include <array>
#include <cstdio>

#include "commands.h"
#include "terminal/printable.h"

namespace nvhost {
namespace {

constexpr std::size_t tokenSize = 20;  // with its terminator

}  // namespace

void AddToken(CLI::App& app, Work& chosen) {
  const auto product = std::make_shared<std::string>();
  CLI::App* const command = app.add_subcommand("token", "Get a session token, signing in if no password is saved");
  command->add_option("--product", *product, "Product whose settings to use")->required()->type_name("NAME");
  command->callback([product, &chosen] {
    chosen = [product](const NVSupportModule& support) {
      std::array<char, tokenSize> token = {};
      support.openSession(product->c_str());
      if (!support.sessionToken(nullptr, token.data())) {
        throw Failure(noToken, "no token: the sign-in was cancelled or refused, or the service is out of reach");
      }
      std::puts(Printable(token.data()).text.c_str());
    };
  });
}

}  // namespace nvhost
