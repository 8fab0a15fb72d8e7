#include "sqlite.h"

namespace lumenquest::adapters {

namespace {

constexpr int kBusyMilliseconds = 5000;

}  // namespace

SqliteConnection::SqliteConnection(const std::string& path, int flags) {
  sqlite3* handle = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &handle, flags, nullptr);
  handle_.reset(handle);
  if (code != SQLITE_OK) Throw(code);
  sqlite3_busy_timeout(handle, kBusyMilliseconds);
}

void SqliteConnection::Throw(int code) {
  throw SqliteError(code, handle_ ? sqlite3_errmsg(handle_.get()) : sqlite3_errstr(code));
}

void SqliteConnection::Execute(const char* sql) {
  const int code = sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) Throw(code);
}

SqliteStatement SqliteConnection::Prepare(const char* sql) { return SqliteStatement(*this, sql); }

std::int64_t SqliteConnection::QueryInteger(const char* sql) {
  SqliteStatement statement = Prepare(sql);
  return statement.Step() ? statement.Integer(0) : 0;
}

SqliteStatement::SqliteStatement(SqliteConnection& connection, const char* sql)
    : connection_(&connection) {
  sqlite3_stmt* statement = nullptr;
  const int code = sqlite3_prepare_v2(connection.handle(), sql, -1, &statement, nullptr);
  statement_.reset(statement);
  Check(code);
}

void SqliteStatement::Check(int code) {
  if (code != SQLITE_OK) connection_->Throw(code);
}

SqliteStatement& SqliteStatement::Bind(int parameter, std::int64_t value) {
  Check(sqlite3_bind_int64(statement_.get(), parameter, value));
  return *this;
}

SqliteStatement& SqliteStatement::Bind(int parameter, double value) {
  Check(sqlite3_bind_double(statement_.get(), parameter, value));
  return *this;
}

SqliteStatement& SqliteStatement::Bind(int parameter, const std::string& value) {
  Check(sqlite3_bind_text64(statement_.get(), parameter, value.data(), value.size(),
                            SQLITE_TRANSIENT, SQLITE_UTF8));
  return *this;
}

bool SqliteStatement::Step() {
  const int code = sqlite3_step(statement_.get());
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) {
    const SqliteError error(code, sqlite3_errmsg(connection_->handle()));
    sqlite3_reset(statement_.get());
    throw error;
  }
  return false;
}

void SqliteStatement::Run() {
  while (Step()) {
  }
  Reset();
}

void SqliteStatement::Reset() { sqlite3_reset(statement_.get()); }

std::string SqliteStatement::Text(int column) const {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column));
  return text == nullptr ? std::string() : std::string(text, size);
}

}  // namespace lumenquest::adapters
