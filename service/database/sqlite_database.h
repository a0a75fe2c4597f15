// The database in one SQLite file. Its users stand in a queue: SQLite itself would have each try again and again, and
// under load some never come to their turn. The queue is the kernel's own, a lock on the file PATH-queue: it wakes
// those who wait in their order, and a process that is killed gives its place up.
#ifndef NVSUPPORT_SERVICE_DATABASE_SQLITE_DATABASE_H
#define NVSUPPORT_SERVICE_DATABASE_SQLITE_DATABASE_H

#include "service/database/database.h"
#include "service/database/file_queue.h"
#include "service/database/sqlite_file.h"

namespace nvsupport::service {

class SqliteDatabase final : public Database {
 public:
  explicit SqliteDatabase(const std::string& path);

  void RunScript(const char* sql) override;
  bool HasTable(const std::string& name) override;

 private:
  std::vector<Row> Execute(const char* sql, const Values& values) override;
  void Begin(const std::string& subject) override;
  void Commit() override;
  void RollBack() noexcept override;

  FileQueue queue;
  SqliteFile file;
};

}  // namespace nvsupport::service

#endif
