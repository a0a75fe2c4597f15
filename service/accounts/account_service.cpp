#include "service/accounts/account_service.h"

#include "service/wire_items.h"

namespace nvsupport::service {
namespace {

enum Operation : std::uint32_t { signIn = 8, nameComputer = 9, createAccount = 10, openSession = 11 };

enum class ComputerState : std::uint32_t { named = 0, unnamed = 1 };

std::string Reply(Status status) {
  return ReplyWriter(status).Bytes();
}

std::string Text(RequestReader& request) {
  return request.Text(AccountService::longestText);
}

std::string SignIn(RequestReader& request, AccountStore& store) {
  const std::string userId = Text(request);
  const std::string password = Text(request);
  const std::uint32_t device = request.Word();
  if (!request.Complete()) return Reply(Status::notUnderstood);

  std::int64_t account = 0;
  const Status status = store.Verify(userId, password, account);
  if (status != Status::done) return Reply(status);
  ReplyWriter reply(Status::done);
  const auto state = store.HasComputer(account, device) ? ComputerState::named : ComputerState::unnamed;
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
  if (!request.Complete()) return Reply(Status::notUnderstood);

  std::int64_t account = 0;
  const Status status = store.Verify(userId, password, account);
  return Reply(status == Status::done ? store.NameComputer(account, computer) : status);
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
  return Reply(request.Complete() ? store.Create(account, now) : Status::notUnderstood);
}

std::string OpenSession(RequestReader& request, AccountStore& store, std::int64_t now, std::int64_t lifetime) {
  const std::string userId = Text(request);
  const std::string password = Text(request);
  if (!request.Complete()) return Reply(Status::notUnderstood);

  std::int64_t account = 0;
  const Status status = store.Verify(userId, password, account);
  if (status != Status::done) return Reply(status);
  ReplyWriter reply(Status::done);
  reply.Text(store.OpenSession(account, now, lifetime));
  return reply.Bytes();
}

}  // namespace

std::string AccountService::Answer(std::string_view request) {
  RequestReader reader(request);
  switch (reader.Word()) {
    case signIn:
      return SignIn(reader, store);
    case nameComputer:
      return NameComputer(reader, store);
    case createAccount:
      return CreateAccount(reader, store, time);
    case openSession:
      return OpenSession(reader, store, time, lifetime);
    default:
      return Reply(Status::notUnderstood);
  }
}

}  // namespace nvsupport::service
