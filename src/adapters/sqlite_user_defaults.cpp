#include "adapters/sqlite_user_defaults.h"

#include <filesystem>
#include <string>
#include <system_error>
#include <type_traits>
#include <utility>

#include "file_errors.h"
#include "sqlite_connection.h"
#include "whole_file.h"

namespace lumenquest::adapters {

namespace {

/// Marks the file as one of settings ("LQse" in its header).
constexpr std::int64_t kApplicationId = 0x4C517365;

/// How a value is stored.
enum Kind : std::int64_t { kBool = 0, kInteger = 1, kDouble = 2, kString = 3 };

void RequireSettingsFile(SqliteConnection& connection) {
  if (connection.QueryInteger("PRAGMA application_id") != kApplicationId) {
    throw SqliteFailure(SQLITE_NOTADB, "it holds something else than settings");
  }
}

bool IsNew(SqliteConnection& connection) {
  return connection.QueryInteger("PRAGMA schema_version") == 0;
}

void MakeTable(SqliteConnection& connection) {
  SqliteTransaction transaction(connection, true);
  connection.Run("PRAGMA application_id = 0x4C517365");
  connection.Run(
      "CREATE TABLE IF NOT EXISTS setting ("
      "key TEXT PRIMARY KEY NOT NULL, kind INTEGER NOT NULL, value NOT NULL) WITHOUT ROWID");
  transaction.Commit();
}

platform::NSUserDefaults::Value ReadValue(const SqliteStatement& row, int kindColumn) {
  switch (row.Integer(kindColumn)) {
    case kBool:
      return row.Integer(kindColumn + 1) != 0;
    case kInteger:
      return row.Integer(kindColumn + 1);
    case kDouble:
      return row.Number(kindColumn + 1);
    default:
      return row.Text(kindColumn + 1);
  }
}

void BindValue(SqliteStatement& statement, const platform::NSUserDefaults::Value& value) {
  std::visit(
      [&statement](const auto& stored) {
        using Stored = std::decay_t<decltype(stored)>;
        if constexpr (std::is_same_v<Stored, bool>) {
          statement.Bind(2, std::int64_t{kBool}).Bind(3, std::int64_t{stored});
        } else if constexpr (std::is_same_v<Stored, std::int64_t>) {
          statement.Bind(2, std::int64_t{kInteger}).Bind(3, stored);
        } else if constexpr (std::is_same_v<Stored, double>) {
          statement.Bind(2, std::int64_t{kDouble}).Bind(3, stored);
        } else {
          statement.Bind(2, std::int64_t{kString}).Bind(3, stored);
        }
      },
      value);
}

}  // namespace

SqliteUserDefaults::SqliteUserDefaults(std::string path) : path_(std::move(path)) {}
SqliteUserDefaults::~SqliteUserDefaults() = default;

SqliteConnection* SqliteUserDefaults::Reading() const {
  // One that takes its file for unchangeable would not see what others write to it.
  if (connection_ && connection_->isImmutable()) connection_.reset();
  if (connection_) return connection_.get();
  std::error_code unreachable;
  if (!std::filesystem::exists(path_, unreachable)) {
    if (unreachable) {
      error_ = fileError(std::filesystem::filesystem_error("exists", path_, unreachable), path_);
    }
    return nullptr;
  }
  try {
    auto connection = openForReading(path_);
    // A process may have died while it made the file: without a table it holds nothing yet.
    if (IsNew(*connection)) return nullptr;
    RequireSettingsFile(*connection);
    connection_ = std::move(connection);
    error_.reset();
  } catch (const SqliteFailure& failure) {
    error_ = fileError(failure, path_);
  }
  return connection_.get();
}

SqliteConnection& SqliteUserDefaults::Writing() {
  if (writable_) return *connection_;
  // When another process made one meanwhile, that one is the file.
  if (!std::filesystem::exists(path_)) writeWhole(path_, MakeTable);
  sweepUnfinished(path_);
  // Whether a file that is there may be written is decided before anything is written to it.
  const auto existing = openForReading(path_);
  const bool isNew = IsNew(*existing);
  if (!isNew) {
    RequireSettingsFile(*existing);
    existing->RequireWhole();
  }
  auto connection = std::make_unique<SqliteConnection>(path_, SqliteConnection::Mode::readWrite);
  if (isNew) {
    connection->Run("PRAGMA journal_mode = WAL");
    MakeTable(*connection);
  }
  connection_ = std::move(connection);
  writable_ = true;
  return *connection_;
}

std::optional<platform::NSUserDefaults::Value> SqliteUserDefaults::objectForKey(
    const std::string& key) const {
  const std::scoped_lock lock(mutex_);
  SqliteConnection* connection = Reading();
  if (connection == nullptr) return std::nullopt;
  try {
    SqliteStatement statement(*connection, "SELECT kind, value FROM setting WHERE key = ?1");
    statement.Bind(1, key);
    if (!statement.Step()) return std::nullopt;
    return ReadValue(statement, 0);
  } catch (const SqliteFailure& failure) {
    error_ = fileError(failure, path_);
    return std::nullopt;
  }
}

void SqliteUserDefaults::setObject(const std::optional<Value>& value, const std::string& forKey) {
  const std::scoped_lock lock(mutex_);
  try {
    SqliteConnection& connection = Writing();
    SqliteStatement statement(
        connection,
        value ? "INSERT INTO setting (key, kind, value) VALUES (?1, ?2, ?3) "
                "ON CONFLICT (key) DO UPDATE SET kind = excluded.kind, value = excluded.value"
              : "DELETE FROM setting WHERE key = ?1");
    statement.Bind(1, forKey);
    if (value) BindValue(statement, *value);
    statement.Execute();
  } catch (const SqliteFailure& failure) {
    error_ = fileError(failure, path_);
    writeFailed_ = true;
  } catch (const std::filesystem::filesystem_error& failure) {
    error_ = fileError(failure, path_);
    writeFailed_ = true;
  }
}

platform::NSUserDefaults::Dictionary SqliteUserDefaults::dictionaryRepresentation() const {
  const std::scoped_lock lock(mutex_);
  Dictionary values;
  SqliteConnection* connection = Reading();
  if (connection == nullptr) return values;
  try {
    SqliteStatement statement(*connection, "SELECT key, kind, value FROM setting");
    while (statement.Step()) values[statement.Text(0)] = ReadValue(statement, 1);
  } catch (const SqliteFailure& failure) {
    error_ = fileError(failure, path_);
  }
  return values;
}

void SqliteUserDefaults::atomically(const std::function<void()>& body) {
  const std::scoped_lock lock(mutex_);
  std::optional<SqliteTransaction> transaction;
  std::error_code unreachable;
  if (!isAtomic_ && std::filesystem::exists(path_, unreachable)) {
    try {
      transaction.emplace(Writing(), true);
    } catch (const SqliteFailure& failure) {
      error_ = fileError(failure, path_);
    } catch (const std::filesystem::filesystem_error& failure) {
      error_ = fileError(failure, path_);
    }
  }
  struct Restored {
    ~Restored() { isAtomic = wasAtomic; }
    bool& isAtomic;
    const bool wasAtomic;
  };
  {
    const Restored restored{isAtomic_, std::exchange(isAtomic_, true)};
    body();
  }
  if (!transaction) return;
  try {
    transaction->Commit();
  } catch (const SqliteFailure& failure) {
    error_ = fileError(failure, path_);
    writeFailed_ = true;
  }
}

bool SqliteUserDefaults::synchronize() {
  const std::scoped_lock lock(mutex_);
  // Every write was committed when it was made.
  return !std::exchange(writeFailed_, false);
}

std::optional<platform::NSError> SqliteUserDefaults::error() const {
  const std::scoped_lock lock(mutex_);
  return error_;
}

}  // namespace lumenquest::adapters
