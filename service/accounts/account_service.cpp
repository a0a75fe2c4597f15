#include "service/accounts/account_service.h"

#include <utility>

#include "service/accounts/account_rules.h"
#include "service/accounts/brake.h"
#include "service/utf8.h"
#include "src/base/ascii.h"

namespace nvsupport::service {
namespace {

enum Operation : std::uint32_t { signIn = 8, nameComputer = 9, createAccount = 10, openSession = 11 };

enum class ComputerState : std::uint32_t { named = 0, unnamed = 1 };

std::string Text(RequestReader& request) {
  return ToUtf8(request.Text(AccountService::longestText));
}

}  // namespace

Reply AccountService::Answer(std::string_view request, const Caller& caller) {
  RequestReader reader(request);
  switch (reader.Word()) {
    case signIn:
      return SignIn(reader, caller);
    case nameComputer:
      return NameComputer(reader, caller);
    case createAccount:
      return CreateAccount(reader, caller);
    case openSession:
      return OpenSession(reader, caller);
    default:
      return StatusReply(Status::notUnderstood);
  }
}

Reply AccountService::SignIn(RequestReader& request, const Caller& caller) {
  const std::string userId = Text(request);
  const std::string password = Text(request);
  const std::uint32_t device = request.Word();
  if (!request.Complete()) return StatusReply(Status::notUnderstood);

  const Proof proof = Prove(userId, password, device, caller);
  if (!proof.user) return proof.refusal;
  ReplyWriter reply(Status::done);
  const auto state = proof.user->knowsDevice ? ComputerState::named : ComputerState::unnamed;
  reply.Word(static_cast<std::uint32_t>(state));
  return StatusReply(Status::done, reply.Bytes());
}

Reply AccountService::NameComputer(RequestReader& request, const Caller& caller) {
  const std::string userId = Text(request);
  const std::string password = Text(request);
  Computer computer;
  computer.name = Text(request);
  computer.device = request.Word();
  request.Word();  // the same in every client: tells nothing
  computer.platform = request.Word();
  if (!request.Complete() || base::HasControlCharacters(computer.name)) return StatusReply(Status::notUnderstood);

  const Proof proof = Prove(userId, password, computer.device, caller);
  return proof.user ? StatusReply(store.NameComputer(proof.user->account, computer)) : proof.refusal;
}

Reply AccountService::CreateAccount(RequestReader& request, const Caller& caller) {
  NewAccount wanted;
  wanted.userId = Text(request);
  wanted.password = Text(request);
  wanted.name = Text(request);
  wanted.company = Text(request);
  wanted.email = Text(request);
  wanted.keepInformed = request.Byte() != 0;
  request.Word();  // the same in every client: tells nothing
  wanted.language = Text(request);
  for (const std::string& text : {wanted.userId, wanted.name, wanted.company, wanted.language}) {
    if (base::HasControlCharacters(text)) return StatusReply(Status::notUnderstood);
  }
  if (!request.Complete()) return StatusReply(Status::notUnderstood);

  Status status = store.Check(wanted);
  if (status == Status::done) {
    Brake brake(database, settings.brakeSeconds,
                {{"new " + NetworkKey(caller.networkAddress), settings.accountsPerAddress}});
    const std::int64_t wait = brake.Wait(caller.now);
    if (wait > 0) return RefusedReply(wait);
    brake.Charge(caller.now);
    status = store.Create(wanted, caller.now);
  }
  if (status == Status::done) {
    const std::string network = NetworkKey(caller.networkAddress);
    store.KnowNetwork(store.Find(wanted.userId, {}, caller.now).value().account, network, caller.now);
    return StatusReply(Status::done);
  }
  // When a connection is lost, the client's platform or the user sends the request again.
  if (status == Status::userIdInUse && store.IsRepeated(wanted, caller.now - repeatSeconds)) {
    Proof proof = Prove(wanted.userId, wanted.password, std::nullopt, caller);
    if (proof.user) return StatusReply(Status::done);
    if (proof.braked) return std::move(proof.refusal);
  }
  return StatusReply(status);
}

Reply AccountService::OpenSession(RequestReader& request, const Caller& caller) {
  const std::string userId = Text(request);
  const std::string password = Text(request);
  if (!request.Complete()) return StatusReply(Status::notUnderstood);

  const Proof proof = Prove(userId, password, std::nullopt, caller);
  if (!proof.user) return proof.refusal;
  ReplyWriter reply(Status::done);
  reply.Text(store.OpenSession(proof.user->account, caller.now, settings.sessionSeconds, settings.sessionsPerAccount));
  return StatusReply(Status::done, reply.Bytes());
}

void AccountService::ForgetFailures(Database& accounts, std::int64_t account, const std::string& userId) {
  const std::string number = std::to_string(account);
  Brake::Empty(accounts, "user " + CredentialKey(userId));
  accounts.Run("DELETE FROM brake WHERE bucket LIKE $1 OR bucket LIKE $2", "device " + number + " %",
               "place " + number + " %");
}

AccountService::Proof AccountService::Prove(const std::string& userId, const std::string& password,
                                            std::optional<std::uint32_t> device, const Caller& caller) {
  const std::string network = NetworkKey(caller.networkAddress);
  auto found = store.Find(userId, {device, network}, caller.now);
  // A user on a known device or network does not pay for the failures of others: that device and that network
  // have buckets of their own, and an attacker's failures go to the buckets of the account and of his network.
  const std::string account = found ? std::to_string(found->account) : "";
  const std::string place = "place " + account + ' ' + network;
  std::vector<Bucket> buckets;
  if (found && found->knowsDevice) {
    buckets = {{"device " + account + ' ' + std::to_string(*device), settings.failuresPerAccount, true}};
  } else if (found && found->knowsNetwork) {
    buckets = {{place, settings.failuresPerAccount, true}};
  } else {
    buckets = {{"user " + CredentialKey(userId), settings.failuresPerAccount, true},
               {"from " + network, settings.failuresPerAddress, false}};
  }
  Brake brake(database, settings.brakeSeconds, std::move(buckets));
  const std::int64_t wait = brake.Wait(caller.now);
  if (wait > 0) return {std::nullopt, RefusedReply(wait), true};
  if (!found || !store.HasPassword(*found, password)) {
    brake.Charge(caller.now);
    return {std::nullopt, StatusReply(found ? Status::wrongPassword : Status::wrongUserId)};
  }
  brake.GiveBack();
  // The requests that follow a sign-in need not name the device.
  if (found->knowsDevice) Brake::Empty(database, place);
  store.KnowNetwork(found->account, network, caller.now);
  return {std::move(found), {}};
}

}  // namespace nvsupport::service
