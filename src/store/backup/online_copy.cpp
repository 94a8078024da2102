#include "store/backup/online_copy.h"

#include "store/sqlite/sqlite_database.h"

#include <sqlite3.h>

#include <memory>

namespace quorlo {
namespace {

constexpr int kPagesOfAPortion = 256;

struct Finish {
  void operator()(sqlite3_backup* backup) const { sqlite3_backup_finish(backup); }
};

}  // namespace

Status OnlineCopy::run(SqliteDatabase& from, SqliteDatabase& to, const std::function<bool()>& mayGoOn) {
  // One view of the file for all portions: without it each commit of another program would begin the copy
  // anew.
  const auto view = SqliteTransaction::begin(from, SqliteTransaction::Kind::read);
  if (!view) return view.error();
  if (const auto first = from.integer("SELECT count(*) FROM sqlite_schema"); !first) return first.error();

  std::unique_ptr<sqlite3_backup, Finish> backup(
      sqlite3_backup_init(to.connection_, "main", from.connection_, "main"));
  if (!backup) return to.failure(sqlite3_extended_errcode(to.connection_));
  int code = SQLITE_OK;
  while (code == SQLITE_OK) {
    if (!mayGoOn()) return Error{"The copy of the library was stopped."};
    code = sqlite3_backup_step(backup.get(), kPagesOfAPortion);
  }
  if (code != SQLITE_DONE) return to.failure(code);
  code = sqlite3_backup_finish(backup.release());
  return code == SQLITE_OK ? Status() : Status(to.failure(code));
}

}  // namespace quorlo
