#include "service/accounts/account_copy.h"

#include <algorithm>
#include <array>

#include "service/accounts/account_schema.h"

namespace nvsupport::service {
namespace {

struct Table {
  const char* name;
  const char* account;  // the column with its number
  const char* columns;
};

constexpr std::array tables = {
    Table{"account", "id",
          "id, user_key, user_id, password_hash, name, company, email_key, keep_informed, language, created"},
    Table{"computer", "account", "account, device, name, platform"},
    Table{"known_address", "account", "account, address, seen"}};

// As one statement, which a server far away answers once.
void Insert(Database& to, const Table& table, std::vector<Database::Row>::const_iterator row,
            std::vector<Database::Row>::const_iterator end) {
  std::string sql = std::string("INSERT INTO ") + table.name + " (" + table.columns + ") VALUES ";
  Database::Values values;
  for (; row != end; ++row) {
    sql += values.empty() ? "(" : ", (";
    for (const std::string& value : *row) {
      values.push_back(value);
      sql += (&value == row->data() ? "$" : ", $") + std::to_string(values.size());
    }
    sql += ')';
  }
  if (!values.empty()) to.Run(sql.c_str(), values);
}

void CopyRows(Database& from, Database& to, const Table& table, std::int64_t after, std::int64_t last) {
  if (!from.HasTable(table.name)) return;  // of an older version
  const std::string select = std::string("SELECT ") + table.columns + " FROM " + table.name + " WHERE " +
                             table.account + " > $1 AND " + table.account + " <= $2";
  const auto rows = from.Run(select.c_str(), after, last);
  constexpr std::ptrdiff_t atATime = 20;  // more take SQLite longer than they save on the way to a server
  for (auto row = rows.begin(); row != rows.end();) {
    const auto next = row + std::min(atATime, rows.end() - row);
    Insert(to, table, row, next);
    row = next;
  }
}

}  // namespace

void CopyAccounts(Database& from, Database& to) {
  RefuseNewer(from);
  BringUpToDate(to);
  Transaction transaction(to, "accounts");
  for (const char* table : {"brake", "session", "known_address", "computer", "account"}) {
    to.Run((std::string("DELETE FROM ") + table).c_str());
  }
  constexpr std::int64_t atATime = 250;
  for (std::int64_t after = -1;;) {
    const auto numbers = from.Run("SELECT id FROM account WHERE id > $1 ORDER BY id LIMIT $2", after, atATime);
    if (numbers.empty()) break;
    const std::int64_t last = ToNumber(numbers.back()[0]);
    for (const Table& table : tables) CopyRows(from, to, table, after, last);
    after = last;
  }
  transaction.Commit();
}

}  // namespace nvsupport::service
