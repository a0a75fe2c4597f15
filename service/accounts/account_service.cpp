#include "service/accounts/account_service.h"

#include <utility>

#include "service/accounts/account_rules.h"
#include "service/accounts/guess_limit.h"
#include "service/utf8.h"

namespace nvsupport::service {
namespace {

enum Operation : std::uint32_t { signIn = 8, nameComputer = 9, createAccount = 10, openSession = 11 };

enum class ComputerState : std::uint32_t { named = 0, unnamed = 1 };

std::string Reply(Status status) {
  return ReplyWriter(status).Bytes();
}

std::string Text(RequestReader& request) {
  return ToUtf8(request.Text(AccountService::longestText));
}

}  // namespace

AccountService::AccountService(Database& accounts, const AccountSettings& limits, Caller requester)
    : database(accounts), settings(limits), caller(std::move(requester)), store(accounts) {}

std::string AccountService::Answer(std::string_view request) {
  RequestReader reader(request);
  switch (reader.Word()) {
    case signIn:
      return SignIn(reader);
    case nameComputer:
      return NameComputer(reader);
    case createAccount:
      return CreateAccount(reader);
    case openSession:
      return OpenSession(reader);
    default:
      return Reply(Status::notUnderstood);
  }
}

std::string AccountService::SignIn(RequestReader& request) {
  const std::string userId = Text(request);
  const std::string password = Text(request);
  const std::uint32_t device = request.Word();
  if (!request.Complete()) return Reply(Status::notUnderstood);

  std::int64_t account = 0;
  const Status status = Verify(userId, password, account);
  if (status != Status::done) return Reply(status);
  ReplyWriter reply(Status::done);
  const auto state = store.HasComputer(account, device) ? ComputerState::named : ComputerState::unnamed;
  reply.Word(static_cast<std::uint32_t>(state));
  return reply.Bytes();
}

std::string AccountService::NameComputer(RequestReader& request) {
  const std::string userId = Text(request);
  const std::string password = Text(request);
  Computer computer;
  computer.name = Text(request);
  computer.device = request.Word();
  request.Word();  // the same in every client: tells nothing
  computer.platform = request.Word();
  if (!request.Complete()) return Reply(Status::notUnderstood);

  std::int64_t account = 0;
  const Status status = Verify(userId, password, account);
  return Reply(status == Status::done ? store.NameComputer(account, computer) : status);
}

std::string AccountService::CreateAccount(RequestReader& request) {
  NewAccount wanted;
  wanted.userId = Text(request);
  wanted.password = Text(request);
  wanted.name = Text(request);
  wanted.company = Text(request);
  wanted.email = Text(request);
  wanted.keepInformed = request.Byte() != 0;
  request.Word();  // the same in every client: tells nothing
  wanted.language = Text(request);
  if (!request.Complete()) return Reply(Status::notUnderstood);

  const Status status = store.Create(wanted, caller.now);
  // A request that lost its connection is sent again, by the client's platform or by the user.
  std::int64_t account = 0;
  const bool repeated = status == Status::userIdInUse && store.IsRepeated(wanted, caller.now - repeatSeconds) &&
                        Verify(wanted.userId, wanted.password, account) == Status::done;
  return Reply(repeated ? Status::done : status);
}

std::string AccountService::OpenSession(RequestReader& request) {
  const std::string userId = Text(request);
  const std::string password = Text(request);
  if (!request.Complete()) return Reply(Status::notUnderstood);

  std::int64_t account = 0;
  const Status status = Verify(userId, password, account);
  if (status != Status::done) return Reply(status);
  ReplyWriter reply(Status::done);
  reply.Text(store.OpenSession(account, caller.now, settings.sessionSeconds, settings.sessionsPerAccount));
  return reply.Bytes();
}

Status AccountService::Verify(const std::string& userId, const std::string& password, std::int64_t& account) {
  GuessLimit limit(database, settings, CredentialKey(userId), NetworkKey(caller.networkAddress));
  const auto seconds = limit.Wait(caller.now);
  if (!seconds) return Status::serviceFailed;
  if (*seconds > 0) caller.wait(*seconds);
  caller.now += *seconds;
  const Status status = store.Verify(userId, password, account);
  if (status == Status::done) {
    limit.Succeeded();
  } else {
    limit.Failed(caller.now);
  }
  return status;
}

}  // namespace nvsupport::service
