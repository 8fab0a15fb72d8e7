#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace lumenquest::adapters {

/// Carries a failure up to the adapter's edge, where it becomes an NSError.
struct SqliteFailure : std::runtime_error {
  SqliteFailure(int resultCode, const std::string& text)
      : std::runtime_error(text), code(resultCode) {}
  int code;
};

/// A connection to a database file, with the settings that all of ours have. One thread at a time
/// uses it and its statements.
class SqliteConnection {
 public:
  enum class Mode {
    create,
    readWrite,
    readOnly,
    /// The file can change in no way, and nothing can be written beside it.
    immutable
  };

  SqliteConnection(const std::filesystem::path& path, Mode mode);

  sqlite3* handle() const { return handle_.get(); }
  bool isImmutable() const { return mode_ == Mode::immutable; }
  /// Throws unless all pages are what they should be, which SQLite itself would not notice before
  /// it comes by the bad one: until then it would write to a damaged file.
  void RequireWhole() const;
  /// Runs statements that have no parameters; what they answer is left out.
  void Run(const std::string& sql);
  /// The integer that a statement answers; 0 when it answers nothing.
  std::int64_t QueryInteger(const std::string& sql) const;
  [[noreturn]] void Throw(int code) const;

 private:
  struct Close {
    void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
  };
  Mode mode_;
  std::unique_ptr<sqlite3, Close> handle_;
};

/// Opens a file that is there for reading, also where SQLite can put nothing beside it, because the
/// folder is read-only or the disk full: then the connection is immutable, and the file must have
/// no log with changes.
std::unique_ptr<SqliteConnection> openForReading(const std::filesystem::path& path);

/// A prepared statement. Parameters and columns count from 1 and 0.
class SqliteStatement {
 public:
  enum class Life {
    brief,
    /// Kept as long as the connection.
    persistent
  };

  SqliteStatement(const SqliteConnection& connection, const std::string& sql,
                  Life life = Life::brief);

  SqliteStatement& Bind(int parameter, std::int64_t number);
  SqliteStatement& Bind(int parameter, double number);
  SqliteStatement& Bind(int parameter, const std::string& text);
  SqliteStatement& BindNull(int parameter);
  /// Makes the statement ready for a run with these values, from the first parameter on.
  template <typename... Values>
  SqliteStatement& Start(const Values&... values) {
    Reset();
    int parameter = 0;
    (Bind(++parameter, values), ...);
    return *this;
  }
  /// True: a row is there to be read.
  bool Step();
  /// Runs the statement to its end and makes it ready for the next values.
  void Execute();
  /// Starts with these values and executes.
  template <typename... Values>
  void Run(const Values&... values) {
    Start(values...);
    Execute();
  }
  void Reset() { sqlite3_reset(statement_.get()); }

  std::int64_t Integer(int column) const { return sqlite3_column_int64(statement_.get(), column); }
  double Number(int column) const { return sqlite3_column_double(statement_.get(), column); }
  std::string Text(int column) const;
  /// One of SQLite's types, such as SQLITE_TEXT.
  int Type(int column) const { return sqlite3_column_type(statement_.get(), column); }
  std::string ColumnName(int column) const { return sqlite3_column_name(statement_.get(), column); }

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  const SqliteConnection& connection_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

/// Rolls back unless it was committed.
class SqliteTransaction {
 public:
  /// `writes` waits for its turn now, so that no later statement can be refused it.
  SqliteTransaction(SqliteConnection& connection, bool writes);
  ~SqliteTransaction();
  SqliteTransaction(const SqliteTransaction&) = delete;
  SqliteTransaction& operator=(const SqliteTransaction&) = delete;
  void Commit();

 private:
  SqliteConnection& connection_;
  bool open_ = true;
};

}  // namespace lumenquest::adapters
