#include "service/accounts/account_schema.h"

#include <array>
#include <stdexcept>

namespace nvsupport::service {
namespace {

// What each version changes in the one before it, so that programs of that one can work with it no more. The
// first version had no table that holds the version.
constexpr std::array versions = {
    R"(
  CREATE TABLE IF NOT EXISTS account (
    id BIGINT PRIMARY KEY,
    user_key TEXT NOT NULL UNIQUE,
    user_id TEXT NOT NULL,
    password_hash TEXT NOT NULL,
    name TEXT NOT NULL,
    company TEXT NOT NULL,
    email_key TEXT NOT NULL UNIQUE,
    keep_informed BIGINT NOT NULL,
    language TEXT NOT NULL,
    created BIGINT NOT NULL);
  CREATE TABLE IF NOT EXISTS computer (
    account BIGINT NOT NULL REFERENCES account(id),
    device BIGINT NOT NULL,
    name TEXT NOT NULL,
    platform BIGINT NOT NULL,
    PRIMARY KEY (account, device));
  CREATE TABLE IF NOT EXISTS session (
    token_hash TEXT PRIMARY KEY,
    account BIGINT NOT NULL REFERENCES account(id),
    ends BIGINT NOT NULL);
  CREATE TABLE schema_version (version BIGINT NOT NULL);
  INSERT INTO schema_version VALUES (1);
)",
    R"(
  CREATE INDEX session_account ON session (account);
  CREATE INDEX session_ends ON session (ends);
  CREATE TABLE attempt (
    user_key TEXT NOT NULL,
    address TEXT NOT NULL,
    answered BIGINT NOT NULL);
  CREATE INDEX attempt_user_key ON attempt (user_key);
  CREATE INDEX attempt_address ON attempt (address);
  CREATE INDEX attempt_answered ON attempt (answered);
  UPDATE schema_version SET version = 2;
)",
    R"(
  DROP TABLE attempt;
  CREATE TABLE brake (
    bucket TEXT PRIMARY KEY,
    until BIGINT NOT NULL);
  CREATE INDEX brake_until ON brake (until);
  CREATE TABLE known_address (
    account BIGINT NOT NULL REFERENCES account(id),
    address TEXT NOT NULL,
    seen BIGINT NOT NULL,
    PRIMARY KEY (account, address));
  UPDATE schema_version SET version = 3;
)"};

// What has been added to the last version since, which its programs need not know: while the web servers are renewed
// one after the other, old and new ones work side by side. A new version takes them in.
constexpr std::array additions = {
    R"(
  CREATE TABLE schema_addition (number BIGINT PRIMARY KEY);
  CREATE INDEX known_address_seen ON known_address (seen);
  INSERT INTO schema_addition VALUES (1);
)"};

std::size_t Version(Database& database) {
  if (!database.HasTable("schema_version")) return 0;
  return static_cast<std::size_t>(ToNumber(database.Run("SELECT version FROM schema_version").at(0).at(0)));
}

std::size_t Additions(Database& database) {
  if (!database.HasTable("schema_addition")) return 0;
  return static_cast<std::size_t>(ToNumber(database.Run("SELECT count(*) FROM schema_addition").at(0).at(0)));
}

bool IsUpToDate(Database& database) {
  return Version(database) == versions.size() && Additions(database) >= additions.size();
}

}  // namespace

void RefuseNewer(Database& database) {
  if (Version(database) > versions.size()) throw std::runtime_error("a newer program has made the database");
}

void BringUpToDate(Database& database) {
  if (IsUpToDate(database)) return;
  Transaction transaction(database, "schema");
  // Read once more: another process may have upgraded it meanwhile.
  RefuseNewer(database);
  for (std::size_t next = Version(database); next < versions.size(); ++next) database.RunScript(versions[next]);
  for (std::size_t next = Additions(database); next < additions.size(); ++next) database.RunScript(additions[next]);
  transaction.Commit();
}

void TryToWrite(Database& database) {
  database.Run("UPDATE schema_version SET version = version");
}

}  // namespace nvsupport::service
