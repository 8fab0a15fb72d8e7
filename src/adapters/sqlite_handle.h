#pragma once

#include <sqlite3.h>

#include <memory>

namespace lumenquest::adapters {

struct SqliteCloser {
  void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

using DatabaseHandle = std::unique_ptr<sqlite3, SqliteCloser>;
using StatementHandle = std::unique_ptr<sqlite3_stmt, SqliteCloser>;

}  // namespace lumenquest::adapters
