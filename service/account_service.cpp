#include "service/account_service.h"

#include "service/message.h"

namespace nvsupport::service {
namespace {

enum Operation : std::uint32_t { kSignIn = 8, kNameComputer = 9, kCreateAccount = 10, kOpenSession = 11 };

enum class ComputerState : std::uint32_t { kNamed = 0, kUnnamed = 1 };

std::string Reply(Status status) {
  return ReplyWriter(status).Bytes();
}

std::string Text(RequestReader& request) {
  return request.Text(AccountService::kLongestText);
}

std::string SignIn(RequestReader& request, AccountStore& store) {
  const std::string userId = Text(request);
  const std::string password = Text(request);
  const std::uint32_t device = request.Word();
  if (!request.Complete()) return Reply(Status::kNotUnderstood);

  std::int64_t account = 0;
  const Status status = store.Verify(userId, password, account);
  if (status != Status::kDone) return Reply(status);
  ReplyWriter reply(Status::kDone);
  const auto state = store.HasComputer(account, device) ? ComputerState::kNamed : ComputerState::kUnnamed;
  reply.Word(static_cast<std::uint32_t>(state));
  return reply.Bytes();
}

std::string NameComputer(RequestReader& request, AccountStore& store) {
  const std::string userId = Text(request);
  const std::string password = Text(request);
  Computer computer;
  computer.name = Text(request);
  computer.device = request.Word();
  request.Word();  // the same in every client: tells nothing
  computer.platform = request.Word();
  if (!request.Complete()) return Reply(Status::kNotUnderstood);

  std::int64_t account = 0;
  const Status status = store.Verify(userId, password, account);
  return Reply(status == Status::kDone ? store.NameComputer(account, computer) : status);
}

std::string CreateAccount(RequestReader& request, AccountStore& store, std::int64_t now) {
  NewAccount account;
  account.userId = Text(request);
  account.password = Text(request);
  account.name = Text(request);
  account.company = Text(request);
  account.email = Text(request);
  account.keepInformed = request.Byte() != 0;
  request.Word();  // the same in every client: tells nothing
  account.language = Text(request);
  return Reply(request.Complete() ? store.Create(account, now) : Status::kNotUnderstood);
}

std::string OpenSession(RequestReader& request, AccountStore& store, std::int64_t now, std::int64_t lifetime) {
  const std::string userId = Text(request);
  const std::string password = Text(request);
  if (!request.Complete()) return Reply(Status::kNotUnderstood);

  std::int64_t account = 0;
  const Status status = store.Verify(userId, password, account);
  if (status != Status::kDone) return Reply(status);
  ReplyWriter reply(Status::kDone);
  reply.Text(store.OpenSession(account, now, lifetime));
  return reply.Bytes();
}

}  // namespace

std::string AccountService::Answer(std::string_view request) {
  RequestReader reader(request);
  switch (reader.Word()) {
    case kSignIn:
      return SignIn(reader, store);
    case kNameComputer:
      return NameComputer(reader, store);
    case kCreateAccount:
      return CreateAccount(reader, store, time);
    case kOpenSession:
      return OpenSession(reader, store, time, lifetime);
    default:
      return Reply(Status::kNotUnderstood);
  }
}

}  // namespace nvsupport::service
