// What the services answer to each operation.
#include <nvsupport/nvsupport.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

#include "account/service_manager.h"
#include "base/ascii.h"
#include "fuzz.h"
#include "resources/resource_ids.h"
#include "service/utf8.h"
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

// Reads a reply as docs/wire_format.md describes it, by itself.
class ReplyBytes {
 public:
  explicit ReplyBytes(std::string_view reply) : rest(reply) {}

  bool IsGood() const { return good; }
  // 0 for what did not come.
  std::int32_t Value() {
    good = good && !rest.empty();
    std::int32_t value = 0;
    rest.remove_prefix(rest.copy(reinterpret_cast<char*>(&value), sizeof value));
    return value;
  }
  std::string Text() {
    const auto length = static_cast<std::uint32_t>(Value());
    good = good && length <= 100'000 && rest.size() + 1 >= 2 * std::size_t{length};
    std::string text;
    while (good && text.size() < length) {
      text += rest.front();
      rest.remove_prefix(std::min<std::size_t>(rest.size(), 2));
    }
    return text.substr(0, text.find('\0'));
  }

 private:
  std::string_view rest;
  bool good = true;
};

bool IsUtf8(const std::string& text) {
  return service::ToUtf8(text) == text;
}

// A text in its field: nothing stands behind it, and it is whole or cut at the end of a character.
template <std::size_t width>
void RequireField(const char (&field)[width], const std::string& text) {
  Require(field[width - 1] == '\0');
  const std::string shown = field;
  Require(std::all_of(field + shown.size(), std::end(field), [](char c) { return c == '\0'; }));
  Require(text.starts_with(shown) && (!IsUtf8(text) || IsUtf8(shown)));
  Require(shown.size() == text.size() || shown.size() + 4 >= width);
}

void Search(std::string_view reply) {
  AnswerWith(reply);
  ReplyBytes bytes(reply);
  const NVMapShopHandle handle = NSMapShopSearch(nullptr, 0);
  MapShopItem item;
  const auto next = [&] {
    std::memset(&item, 0xAA, sizeof item);  // as a host's record may be
    return NSMapShopGetNext(handle, &item);
  };
  const bool done = bytes.Value() == 0;
  for (std::int32_t left = done ? bytes.Value() : 0; left > 0 && bytes.IsGood(); --left) bytes.Value();
  for (std::int32_t left = done ? bytes.Value() : 0; left > 0; --left) {
    std::string title = bytes.Text();
    const std::int32_t first = bytes.Value();
    const std::string shortText = bytes.Text();
    const std::string file = bytes.Text();
    const std::int32_t second = bytes.Value();
    if (!bytes.IsGood()) break;
    Require(next() && item.firstValue == first && item.secondValue == second);
    RequireField(item.shortText, shortText);
    RequireField(item.fileReference, file);
    if (base::ToLower(item.fileReference).ends_with(".nvpkg")) {
      title = "Package: " + title.substr(0, 190);
      Require(title == item.title);  // which may be cut within a character
    } else {
      RequireField(item.title, title);
    }
  }
  Require(!next());
  const std::int32_t closing = done ? bytes.Value() : 0;
  Require(NSMapShopClose(handle) == (bytes.IsGood() ? closing : 0));
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
