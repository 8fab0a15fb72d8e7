#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace lumenquest::adapters {

/// What SQLite answered, with its words.
class SqliteError : public std::runtime_error {
 public:
  SqliteError(int code, const std::string& message) : std::runtime_error(message), code_(code) {}
  /// The primary result code, such as SQLITE_NOTADB.
  int code() const { return code_ & 0xFF; }

 private:
  int code_;
};

class SqliteStatement;

/// An open database file. Failures throw SqliteError.
class SqliteConnection {
 public:
  /// `flags`: SQLITE_OPEN_... of sqlite3_open_v2. Waits some seconds for another process's lock.
  SqliteConnection(const std::string& path, int flags);

  /// Runs statements that neither take nor give values.
  void Execute(const char* sql);
  SqliteStatement Prepare(const char* sql);
  /// The integer that a pragma or query gives in its first column.
  std::int64_t QueryInteger(const char* sql);

  sqlite3* handle() { return handle_.get(); }
  [[noreturn]] void Throw(int code);

 private:
  struct Close {
    void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
  };
  std::unique_ptr<sqlite3, Close> handle_;
};

/// A prepared statement. Parameters and columns count as SQLite counts them: from 1 and from 0.
class SqliteStatement {
 public:
  SqliteStatement(SqliteConnection& connection, const char* sql);

  SqliteStatement& Bind(int parameter, std::int64_t value);
  SqliteStatement& Bind(int parameter, double value);
  SqliteStatement& Bind(int parameter, const std::string& value);

  /// True while there is a row.
  bool Step();
  /// Runs to the end and makes the statement ready for another run.
  void Run();
  void Reset();

  std::int64_t Integer(int column) const { return sqlite3_column_int64(statement_.get(), column); }
  double Double(int column) const { return sqlite3_column_double(statement_.get(), column); }
  std::string Text(int column) const;

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };

  void Check(int code);

  SqliteConnection* connection_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

}  // namespace lumenquest::adapters
