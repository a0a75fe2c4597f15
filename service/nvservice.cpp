// nvservice, the operators' tool for the accounts: backups, care for single accounts, expiry. What it does it does
// while the service runs.
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "service/accounts/account_care.h"
#include "service/accounts/account_copy.h"
#include "service/accounts/account_schema.h"
#include "service/accounts/account_settings.h"
#include "service/settings.h"

namespace {

using namespace nvsupport::service;

constexpr const char* usage =
    R"(Usage: nvservice COMMAND [ARGUMENT]...

  backup FILE                write the accounts to a new file
  restore FILE               put the accounts of a backup in the place of those in the database
  check [FILE]               look for damage, in a backup or in the database
  migrate ADDRESS            copy the accounts to another database, which is to have none
  show USER-ID               show what is kept about a user
  correct USER-ID FIELD VALUE
                             change name, company, email, language or keep-informed (yes, no)
  reset-password USER-ID     make a new password, show it, and end the sessions
  delete-account USER-ID     delete an account and all that is kept about its user
  expire                     forget what is over: failed sign-ins, sessions, addresses

The accounts are where NV_SERVICE_DATABASE says, in the environment or else in /etc/nvservice/settings. All of this may
be done while the service runs. Root works on an SQLite file as the owner of its folder.
Exit code: 0 done, 1 failed, 2 wrong arguments.
)";

using Arguments = std::vector<std::string>;

// So that what is made in the service's folder can be used by the service, and is no trap for root.
void BecomeOwner(const std::string& file) {
  struct stat folder = {};
  const std::string path = std::filesystem::absolute(file).parent_path();
  if (stat(path.c_str(), &folder) != 0) throw std::system_error(errno, std::generic_category(), path);
  if (geteuid() != 0 || folder.st_uid == 0) return;
  if (setgroups(0, nullptr) != 0 || setegid(folder.st_gid) != 0 || seteuid(folder.st_uid) != 0) {
    throw std::system_error(errno, std::generic_category(), "becoming the owner of " + path);
  }
}

// Where the accounts are. What only the caller may open has to be open before.
std::string Address(bool mayBeMissing = false) {
  std::string address = RequiredSetting("NV_SERVICE_DATABASE");
  if (IsPostgres(address)) return address;
  BecomeOwner(address);
  if (!mayBeMissing && !std::filesystem::exists(address)) throw std::runtime_error(address + " does not exist");
  return address;
}

std::unique_ptr<Database> Open(const std::string& address) {
  auto database = OpenDatabase(address, Patience::endless);
  BringUpToDate(*database);
  return database;
}

std::string AccountsIn(Database& database) {
  return database.Run("SELECT count(*) FROM account")[0][0] + " accounts\n";
}

std::string Backup(const Arguments& arguments) {
  const auto backup = MakeBackup(arguments[0]);
  try {
    CopyAccounts(*OpenSnapshot(Address()), *backup);
  } catch (...) {
    std::error_code ignored;
    if (seteuid(getuid()) == 0) std::filesystem::remove(arguments[0], ignored);
    throw;
  }
  return AccountsIn(*backup);
}

std::string Restore(const Arguments& arguments) {
  const auto backup = OpenBackup(arguments[0]);
  const auto database = Open(Address(true));
  CopyAccounts(*backup, *database);
  return AccountsIn(*database);
}

std::string Check(const Arguments& arguments) {
  const auto database = arguments.empty() ? OpenSnapshot(Address()) : OpenBackup(arguments[0]);
  const std::string damage = database->Damage();
  if (!damage.empty()) throw std::runtime_error(damage);
  RefuseNewer(*database);
  return AccountsIn(*database);
}

std::string Migrate(const Arguments& arguments) {
  const auto source = OpenSnapshot(Address());
  const auto target = Open(arguments[0]);
  if (!target->Run("SELECT 1 FROM account LIMIT 1").empty()) throw std::runtime_error("there are accounts already");
  CopyAccounts(*source, *target);
  return AccountsIn(*target);
}

std::string Show(const Arguments& arguments) {
  return AccountCare(*Open(Address()), arguments[0]).Show();
}

std::string Correct(const Arguments& arguments) {
  AccountCare(*Open(Address()), arguments[0]).Correct(arguments[1], arguments[2]);
  return {};
}

std::string ResetPassword(const Arguments& arguments) {
  return AccountCare(*Open(Address()), arguments[0]).ResetPassword() + '\n';
}

std::string DeleteAccount(const Arguments& arguments) {
  AccountCare(*Open(Address()), arguments[0]).Delete();
  return {};
}

std::string ExpireAll(const Arguments& /*none*/) {
  Expire(*Open(Address()), std::time(nullptr), ReadAccountSettings().brakeSeconds);
  return {};
}

constexpr struct Command {
  const char* name;
  std::size_t arguments;
  std::string (*run)(const Arguments&);
} commands[] = {
    {"backup", 1, Backup},
    {"restore", 1, Restore},
    {"check", 0, Check},
    {"check", 1, Check},
    {"migrate", 1, Migrate},
    {"show", 1, Show},
    {"correct", 3, Correct},
    {"reset-password", 1, ResetPassword},
    {"delete-account", 1, DeleteAccount},
    {"expire", 0, ExpireAll},
};

const Command* Find(const std::string& name, const Arguments& arguments) {
  for (const Command& command : commands) {
    if (name == command.name && arguments.size() == command.arguments) return &command;
  }
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) try {
  const std::string name = argc > 1 ? argv[1] : "";
  const Arguments arguments(argv + std::min(argc, 2), argv + argc);
  if (name == "--help") {
    std::fputs(usage, stdout);
    return EXIT_SUCCESS;
  }
  const Command* const command = Find(name, arguments);
  if (command == nullptr) {
    std::fputs(usage, stderr);
    return 2;
  }
  umask(S_IRWXG | S_IRWXO);
  ReadSettings("/etc/nvservice/settings");
  std::fputs(command->run(arguments).c_str(), stdout);
  return EXIT_SUCCESS;
} catch (const std::exception& error) {
  std::fprintf(stderr, "nvservice: %s\n", error.what());
  return EXIT_FAILURE;
}
