// What the services answer to each operation.
#include <nvsupport/nvsupport.h>

#include <cstring>

#include "account/service_manager.h"
#include "fuzz.h"
#include "resources/resource_ids.h"
#include "support/played_user.h"

namespace nvsupport::fuzz {
namespace {

class Session final : public CVServiceManager {
 public:
  Session() : CVServiceManager("Fuzz", 1, 2) {
    m_userId = "user";
    m_password = "secret";
  }
  std::string GetDeviceName() override { return "computer"; }
};

void Search(std::string_view reply) {
  AnswerWith(reply);
  const NVMapShopHandle handle = NSMapShopSearch(nullptr, 0);
  MapShopItem item;
  while (NSMapShopGetNext(handle, &item)) {
    Require(std::memchr(item.title, 0, sizeof item.title) != nullptr);
    Require(std::memchr(item.shortText, 0, sizeof item.shortText) != nullptr);
    Require(std::memchr(item.fileReference, 0, sizeof item.fileReference) != nullptr);
  }
  NSMapShopClose(handle);
}

// An operation whose user closes every dialog that it leads to.
template <typename Operation>
void Run(std::string_view reply, Operation operation, PlayedUser::Step first = PlayedUser::Clicks(IDCANCEL)) {
  AnswerWith(reply);
  PlayedUser user;
  user.steps = {std::move(first), PlayedUser::Clicks(IDCANCEL), PlayedUser::Clicks(IDCANCEL)};
  Session session;
  operation(session);
}

void SignIn(std::string_view reply) {
  Run(reply, [](Session& session) { session.VerifyAccount(nullptr); });
}

void ComputerName(std::string_view reply) {
  Run(reply, [](Session& session) { session.SendDeviceName(nullptr, "computer"); });
}

void Account(std::string_view reply) {
  const auto retypesAndAccepts = [](HWND dialog) {
    PlayedUser::Types(IDC_RETYPE_PASSWORD, "secret")(dialog);
    PlayedUser::Clicks(IDOK)(dialog);
  };
  Run(reply, [](Session& session) { session.CreateAccount(nullptr); }, retypesAndAccepts);
}

void Token(std::string_view reply) {
  Run(reply, [](Session& session) { session.GetSessionToken(nullptr); });
}

}  // namespace

const Target replyTargets[5] = {
    {"search", &Search},   {"sign_in", &SignIn}, {"computer_name", &ComputerName},
    {"account", &Account}, {"token", &Token},
};

}  // namespace nvsupport::fuzz
