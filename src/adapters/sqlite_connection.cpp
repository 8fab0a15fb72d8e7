#include "sqlite_connection.h"

#include <system_error>

namespace lumenquest::adapters {

namespace {

constexpr int kBusyTimeoutMillis = 10000;

/// The path as SQLite's URI, for the one mode that only a URI can ask for.
std::string ImmutableUri(const std::filesystem::path& path) {
  constexpr const char* kHexDigits = "0123456789ABCDEF";
  std::string uri = "file:";
  for (const char c : std::filesystem::absolute(path).string()) {
    const auto byte = static_cast<unsigned char>(c);
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                       c == '/' || c == '.' || c == '-' || c == '_';
    if (plain) {
      uri += c;
    } else {
      uri += {'%', kHexDigits[byte >> 4], kHexDigits[byte & 15]};
    }
  }
  return uri + "?immutable=1";
}

}  // namespace

SqliteConnection::SqliteConnection(const std::filesystem::path& path, Mode mode) : mode_(mode) {
  int flags = SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_NOMUTEX;
  std::string name = std::filesystem::absolute(path).string();
  switch (mode) {
    case Mode::create:
      flags |= SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
      break;
    case Mode::readWrite:
      flags |= SQLITE_OPEN_READWRITE;
      break;
    case Mode::readOnly:
      flags |= SQLITE_OPEN_READONLY;
      break;
    case Mode::immutable:
      flags |= SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
      name = ImmutableUri(path);
      break;
  }
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(name.c_str(), &opened, flags, nullptr);
  handle_.reset(opened);
  if (code != SQLITE_OK) Throw(code);
  sqlite3_busy_timeout(opened, kBusyTimeoutMillis);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  Run("PRAGMA foreign_keys = ON");
  Run("PRAGMA cell_size_check = ON");
  // A saved plan survives a power failure as well.
  Run("PRAGMA synchronous = FULL");
}

void SqliteConnection::Run(const std::string& sql) {
  const int code = sqlite3_exec(handle_.get(), sql.c_str(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) Throw(code);
}

std::int64_t SqliteConnection::QueryInteger(const std::string& sql) const {
  SqliteStatement statement(*this, sql);
  return statement.Step() ? statement.Integer(0) : 0;
}

void SqliteConnection::RequireWhole() const {
  SqliteStatement check(*this, "PRAGMA quick_check(1)");
  if (!check.Step() || check.Text(0) != "ok") throw SqliteFailure(SQLITE_CORRUPT, check.Text(0));
}

void SqliteConnection::Throw(int code) const {
  throw SqliteFailure(code, handle_ ? sqlite3_errmsg(handle_.get()) : sqlite3_errstr(code));
}

std::unique_ptr<SqliteConnection> openForReading(const std::filesystem::path& path) {
  try {
    auto connection = std::make_unique<SqliteConnection>(path, SqliteConnection::Mode::readOnly);
    connection->QueryInteger("PRAGMA schema_version");
    return connection;
  } catch (const SqliteFailure& failure) {
    const int code = failure.code & 0xFF;
    const bool nothingBeside =
        code == SQLITE_CANTOPEN || code == SQLITE_READONLY || failure.code == SQLITE_IOERR_SHMSIZE;
    std::error_code noLog;
    const auto logSize = std::filesystem::file_size(path.string() + "-wal", noLog);
    if (!nothingBeside || (!noLog && logSize != 0)) throw;
    return std::make_unique<SqliteConnection>(path, SqliteConnection::Mode::immutable);
  }
}

SqliteStatement::SqliteStatement(const SqliteConnection& connection, const std::string& sql,
                                 Life life)
    : connection_(connection) {
  sqlite3_stmt* prepared = nullptr;
  const int code = sqlite3_prepare_v3(
      connection.handle(), sql.c_str(), static_cast<int>(sql.size()),
      life == Life::persistent ? SQLITE_PREPARE_PERSISTENT : 0, &prepared, nullptr);
  statement_.reset(prepared);
  if (code != SQLITE_OK) connection.Throw(code);
}

SqliteStatement& SqliteStatement::Bind(int parameter, std::int64_t number) {
  const int code = sqlite3_bind_int64(statement_.get(), parameter, number);
  if (code != SQLITE_OK) connection_.Throw(code);
  return *this;
}

SqliteStatement& SqliteStatement::Bind(int parameter, double number) {
  const int code = sqlite3_bind_double(statement_.get(), parameter, number);
  if (code != SQLITE_OK) connection_.Throw(code);
  return *this;
}

SqliteStatement& SqliteStatement::Bind(int parameter, const std::string& text) {
  const int code = sqlite3_bind_text64(statement_.get(), parameter, text.data(), text.size(),
                                       SQLITE_TRANSIENT, SQLITE_UTF8);
  if (code != SQLITE_OK) connection_.Throw(code);
  return *this;
}

SqliteStatement& SqliteStatement::BindNull(int parameter) {
  const int code = sqlite3_bind_null(statement_.get(), parameter);
  if (code != SQLITE_OK) connection_.Throw(code);
  return *this;
}

bool SqliteStatement::Step() {
  const int code = sqlite3_step(statement_.get());
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) connection_.Throw(code);
  return false;
}

void SqliteStatement::Execute() {
  while (Step()) {
  }
  Reset();
}

std::string SqliteStatement::Text(int column) const {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
  const int size = sqlite3_column_bytes(statement_.get(), column);
  return text != nullptr ? std::string(text, static_cast<std::size_t>(size)) : std::string();
}

SqliteTransaction::SqliteTransaction(SqliteConnection& connection, bool writes)
    : connection_(connection) {
  connection_.Run(writes ? "BEGIN IMMEDIATE" : "BEGIN");
}

SqliteTransaction::~SqliteTransaction() {
  if (!open_) return;
  // SQLite may have rolled back by itself already.
  sqlite3_stmt* rollback = nullptr;
  if (sqlite3_get_autocommit(connection_.handle()) == 0 &&
      sqlite3_prepare_v2(connection_.handle(), "ROLLBACK", -1, &rollback, nullptr) == SQLITE_OK) {
    sqlite3_step(rollback);
  }
  sqlite3_finalize(rollback);
}

void SqliteTransaction::Commit() {
  connection_.Run("COMMIT");
  open_ = false;
}

}  // namespace lumenquest::adapters
