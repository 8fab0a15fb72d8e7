#include "adapters/sqlite_object_store.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

#include "file_errors.h"
#include "platform/assertion.h"
#include "sqlite_connection.h"
#include "whole_file.h"

namespace lumenquest::adapters {

namespace {

namespace fs = std::filesystem;
using platform::AttributeType;
using platform::AttributeValue;
using platform::NSDate;
using platform::NSEntityDescription;
using platform::NSError;
using platform::NSFetchRequest;
using platform::NSManagedObjectModel;
using platform::NSPredicate;
using platform::ObjectChange;
using platform::ObjectRecord;
using platform::ObjectStore;
using platform::Outcome;
using platform::SaveRequest;
using platform::StoreMetadata;
using platform::StoreOptions;
using Mode = SqliteConnection::Mode;

/// Marks our files in SQLite's header ("Lmqs").
constexpr std::int64_t kApplicationId = 0x4C6D7173;
/// Of the tables' layout; a file of another one is not ours to read.
constexpr std::int64_t kFormat = 1;

enum ErrorCode { kMissing = 1, kForeign, kVersion, kConflict, kExists, kFiles, kReadOnly };

/// A failure that is not SQLite's own; an NSError's key and arguments.
struct StoreFailure : std::runtime_error {
  StoreFailure(ErrorCode errorCode, const char* sentence, std::vector<std::string> values)
      : std::runtime_error(sentence),
        code(errorCode),
        key(sentence),
        arguments(std::move(values)) {}
  ErrorCode code;
  std::string key;
  std::vector<std::string> arguments;
};

/// Runs `work`; what it throws becomes the error.
template <typename Value>
Outcome<Value> Guard(const fs::path& url, const std::function<Value()>& work) {
  try {
    return work();
  } catch (const SqliteFailure& failure) {
    return fileError(failure, url);
  } catch (const StoreFailure& failure) {
    return NSError{"Store",           failure.code, failure.key,
                   failure.arguments, {},           {{"path", url.string()}}};
  } catch (const fs::filesystem_error& failure) {
    return fileError(failure, url);
  }
}

/// Names of the model are letters and digits; so are these with a dot between.
std::string Quoted(const std::string& name) { return "\"" + name + "\""; }
std::string MembersTable(const NSEntityDescription& entity, const std::string& relationship) {
  return entity.name + "." + relationship;
}
std::string IndexName(const NSEntityDescription& entity, const std::string& attribute) {
  return "index." + entity.name + "." + attribute;
}

std::string ColumnType(AttributeType type) {
  switch (type) {
    case AttributeType::string:
      return "TEXT";
    case AttributeType::integer:
      return "INTEGER";
    case AttributeType::number:
    case AttributeType::date:  // seconds since the reference date
      break;
  }
  return "REAL";
}

// ---- Values ----

SqliteStatement& BindValue(SqliteStatement& statement, int parameter, const AttributeValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return statement.Bind(parameter, *text);
  if (const auto* whole = std::get_if<std::int64_t>(&value)) {
    return statement.Bind(parameter, *whole);
  }
  if (const auto* number = std::get_if<double>(&value)) return statement.Bind(parameter, *number);
  if (const auto* date = std::get_if<NSDate>(&value)) {
    return statement.Bind(parameter, date->timeIntervalSinceReferenceDate());
  }
  return statement.BindNull(parameter);
}

AttributeValue ReadValue(const SqliteStatement& row, int column, AttributeType type) {
  const int stored = row.Type(column);
  if (stored == SQLITE_NULL) return {};
  const bool isNumber = stored == SQLITE_FLOAT || stored == SQLITE_INTEGER;
  switch (type) {
    case AttributeType::string:
      if (stored == SQLITE_TEXT) return row.Text(column);
      break;
    case AttributeType::number:
      if (isNumber) return row.Number(column);
      break;
    case AttributeType::integer:
      if (stored == SQLITE_INTEGER) return row.Integer(column);
      break;
    case AttributeType::date:
      if (isNumber) return NSDate(row.Number(column));
      break;
  }
  throw SqliteFailure(SQLITE_MISMATCH,
                      "column \"" + row.ColumnName(column) + "\" holds a value of another type");
}

// ---- Tables ----

/// Columns of the tables that are there, with their types.
using Tables = std::map<std::string, std::map<std::string, std::string>>;

Tables ReadTables(const SqliteConnection& connection) {
  Tables tables;
  SqliteStatement statement(
      connection,
      "SELECT t.name, c.name, c.type FROM sqlite_master t, pragma_table_info(t.name) c "
      "WHERE t.type = 'table' AND substr(t.name, 1, 7) <> 'sqlite_'");
  while (statement.Step()) tables[statement.Text(0)][statement.Text(1)] = statement.Text(2);
  return tables;
}

void CreateMembersTable(SqliteConnection& connection, const NSEntityDescription& entity,
                        const std::string& relationship) {
  connection.Run("CREATE TABLE " + Quoted(MembersTable(entity, relationship)) +
                 " (owner INTEGER NOT NULL REFERENCES " + Quoted(entity.name) +
                 " (_pk) ON DELETE CASCADE, position INTEGER NOT NULL, member TEXT NOT NULL, "
                 "PRIMARY KEY (owner, position)) WITHOUT ROWID");
}

void CreateEntityTable(SqliteConnection& connection, const NSEntityDescription& entity) {
  // AUTOINCREMENT: an object's identifier is never given to another one.
  std::string sql = "CREATE TABLE " + Quoted(entity.name) +
                    " (_pk INTEGER PRIMARY KEY AUTOINCREMENT, _version INTEGER NOT NULL";
  for (const auto& attribute : entity.attributes) {
    sql += ", " + Quoted(attribute.name) + " " + ColumnType(attribute.type);
  }
  connection.Run(sql + ")");
}

void CreateIndexes(SqliteConnection& connection, const NSEntityDescription& entity) {
  for (const auto& attribute : entity.attributes) {
    if (!attribute.isIndexed) continue;
    connection.Run("CREATE INDEX IF NOT EXISTS " + Quoted(IndexName(entity, attribute.name)) +
                   " ON " + Quoted(entity.name) + " (" + Quoted(attribute.name) + ")");
  }
}

void SetMetadata(const SqliteConnection& connection, const std::string& key,
                 const AttributeValue& value) {
  SqliteStatement statement(connection,
                            "INSERT OR REPLACE INTO _metadata (key, value) VALUES (?, ?)");
  BindValue(statement.Bind(1, key), 2, value).Execute();
}

StoreMetadata ReadMetadata(const SqliteConnection& connection, const fs::path& url) {
  StoreMetadata metadata;
  std::int64_t format = 0;
  SqliteStatement statement(connection, "SELECT key, value FROM _metadata");
  while (statement.Step()) {
    const std::string key = statement.Text(0);
    if (key == "format") format = statement.Integer(1);
    if (key == "storeIdentifier") metadata.storeIdentifier = statement.Text(1);
    if (key == "modelName") metadata.modelName = statement.Text(1);
    if (key == "modelVersion") metadata.modelVersion = static_cast<int>(statement.Integer(1));
  }
  if (format != kFormat || metadata.storeIdentifier.empty()) {
    throw StoreFailure(kVersion, "store_error_format",
                       {url.string(), std::to_string(format), std::to_string(kFormat)});
  }
  return metadata;
}

// ---- Files ----

/// Refuses what is no store of ours by its first bytes alone: SQLite itself would already write to
/// a database that another program left in the middle of a change.
void CheckFile(const fs::path& url) {
  constexpr std::size_t kHeaderSize = 100;
  constexpr std::size_t kApplicationIdOffset = 68;
  constexpr char kMagic[] = "SQLite format 3";
  std::array<char, kHeaderSize> header{};
  std::ifstream file(url, std::ios::binary);
  if (!fs::is_regular_file(url) || !file) {
    throw StoreFailure(kFiles, "store_error_not_readable", {url.string()});
  }
  file.read(header.data(), header.size());
  std::int64_t applicationId = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    applicationId =
        applicationId * 256 + static_cast<unsigned char>(header[kApplicationIdOffset + i]);
  }
  if (file.gcount() != kHeaderSize || std::memcmp(header.data(), kMagic, sizeof kMagic) != 0 ||
      applicationId != kApplicationId) {
    throw StoreFailure(kForeign, "file_error_damaged", {url.string()});
  }
}

void CreateStore(const fs::path& url, const NSManagedObjectModel& model,
                 const std::string& identifier) {
  // When another process made one meanwhile, that one is the store.
  writeWhole(url, [&](SqliteConnection& connection) {
    SqliteTransaction transaction(connection, true);
    connection.Run("PRAGMA application_id = " + std::to_string(kApplicationId));
    connection.Run("CREATE TABLE _metadata (key TEXT PRIMARY KEY, value) WITHOUT ROWID");
    SetMetadata(connection, "format", kFormat);
    SetMetadata(connection, "storeIdentifier", identifier);
    SetMetadata(connection, "modelName", model.name);
    SetMetadata(connection, "modelVersion", std::int64_t{model.version});
    for (const NSEntityDescription& entity : model.entities) {
      CreateEntityTable(connection, entity);
      for (const auto& relationship : entity.toMany) {
        CreateMembersTable(connection, entity, relationship);
      }
      CreateIndexes(connection, entity);
    }
    transaction.Commit();
  });
}

std::unique_ptr<SqliteConnection> Connect(const fs::path& url, bool readOnly) {
  CheckFile(url);
  auto reading = openForReading(url);
  if (readOnly) return reading;
  reading->RequireWhole();
  return std::make_unique<SqliteConnection>(url, Mode::readWrite);
}

// ---- Migration ----

/// Drops what the target lacks and adds what it has, inside the caller's transaction.
void MigrateTables(SqliteConnection& connection, const NSManagedObjectModel& target) {
  const Tables tables = ReadTables(connection);
  std::set<std::string> wanted{"_metadata"};
  for (const NSEntityDescription& entity : target.entities) {
    wanted.insert(entity.name);
    for (const auto& relationship : entity.toMany) {
      wanted.insert(MembersTable(entity, relationship));
    }
  }
  // Members first: they refer to the others.
  for (const bool members : {true, false}) {
    for (const auto& [table, columns] : tables) {
      if ((table.find('.') != std::string::npos) == members && !wanted.contains(table)) {
        connection.Run("DROP TABLE " + Quoted(table));
      }
    }
  }
  for (const NSEntityDescription& entity : target.entities) {
    const auto found = tables.find(entity.name);
    if (found == tables.end()) {
      CreateEntityTable(connection, entity);
    } else {
      for (const auto& [column, type] : found->second) {
        if (column.starts_with('_')) continue;
        const auto index = entity.indexOfAttribute(column);
        if (!index || !entity.attributes[*index].isIndexed) {
          connection.Run("DROP INDEX IF EXISTS " + Quoted(IndexName(entity, column)));
        }
        if (!index) {
          connection.Run("ALTER TABLE " + Quoted(entity.name) + " DROP COLUMN " + Quoted(column));
        } else if (type != ColumnType(entity.attributes[*index].type)) {
          throw StoreFailure(kVersion, "store_error_type_changed", {column, entity.name});
        }
      }
      for (const auto& attribute : entity.attributes) {
        if (found->second.contains(attribute.name)) continue;
        connection.Run("ALTER TABLE " + Quoted(entity.name) + " ADD COLUMN " +
                       Quoted(attribute.name) + " " + ColumnType(attribute.type));
      }
    }
    for (const auto& relationship : entity.toMany) {
      if (!tables.contains(MembersTable(entity, relationship))) {
        CreateMembersTable(connection, entity, relationship);
      }
    }
    CreateIndexes(connection, entity);
  }
}

/// `key`'s sentence names the file, its version and the model's.
/// A store that is not there yet is empty; one behind what is no folder is not known to be.
void ThrowIfUnreachable(const fs::path& url) {
  std::error_code error;
  if (!fs::exists(fs::status(url, error)) && error == std::errc::not_a_directory) {
    throw fs::filesystem_error("no store", url, error);
  }
}

[[noreturn]] void ThrowVersion(const char* key, const fs::path& url, int stored,
                               const NSManagedObjectModel& model) {
  throw StoreFailure(kVersion, key,
                     {url.string(), std::to_string(stored), std::to_string(model.version)});
}

void Migrate(SqliteConnection& connection, const fs::path& url, const NSManagedObjectModel& model) {
  SqliteTransaction transaction(connection, true);
  // Another process may have done it while this one waited for its turn.
  const int version = ReadMetadata(connection, url).modelVersion;
  if (version == model.version) return;
  if (version > model.version || model.earlierVersion(version) == nullptr) {
    ThrowVersion("store_error_unknown_version", url, version, model);
  }
  MigrateTables(connection, model);
  SetMetadata(connection, "modelVersion", std::int64_t{model.version});
  transaction.Commit();
}

// ---- The store ----

class SqliteObjectStore final : public ObjectStore {
 public:
  /// Without a connection: there is no file yet.
  SqliteObjectStore(fs::path url, std::shared_ptr<const NSManagedObjectModel> model, bool readOnly,
                    std::unique_ptr<SqliteConnection> connection)
      : url_(std::move(url)), model_(std::move(model)), readOnly_(readOnly) {
    if (connection) Adopt(std::move(connection));
  }

  fs::path url() const override { return url_; }
  std::string identifier() const override { return identifier_; }

  Outcome<std::vector<ObjectRecord>> fetch(const NSFetchRequest& request) override {
    return Guard<std::vector<ObjectRecord>>(url_, [&] { return Fetch(request); });
  }

  Outcome<std::vector<std::int64_t>> save(const SaveRequest& request) override {
    return Guard<std::vector<std::int64_t>>(url_, [&] { return Save(request); });
  }

  std::string QueryPlan(const NSFetchRequest& request) {
    const auto plan = Guard<std::string>(url_, [&] {
      std::string steps;
      SqliteStatement statement(*connection_, "EXPLAIN QUERY PLAN " + FetchSql(request));
      while (statement.Step()) steps += statement.Text(3) + "\n";
      return steps;
    });
    return plan.value;
  }

  void CopyTo(const fs::path& target) {
    const bool written = writeWhole(target, [&](SqliteConnection& copy) {
      const std::unique_ptr<sqlite3_backup, int (*)(sqlite3_backup*)> backup(
          sqlite3_backup_init(copy.handle(), "main", connection_->handle(), "main"),
          sqlite3_backup_finish);
      if (backup == nullptr) copy.Throw(sqlite3_extended_errcode(copy.handle()));
      const int code = sqlite3_backup_step(backup.get(), -1);
      if (code != SQLITE_DONE) throw SqliteFailure(code, sqlite3_errstr(code));
    });
    if (!written) {
      throw StoreFailure(kExists, "store_error_exists", {target.string()});
    }
  }

 private:
  void Adopt(std::unique_ptr<SqliteConnection> connection) {
    identifier_ = ReadMetadata(*connection, url_).storeIdentifier;
    connection_ = std::move(connection);
  }

  /// Reads again which tables are there, when somebody has changed them since.
  void RefreshTables() {
    const std::int64_t version = connection_->QueryInteger("PRAGMA schema_version");
    if (version == schemaVersion_) return;
    tables_ = ReadTables(*connection_);
    schemaVersion_ = version;
  }

  /// The column, or what stands for one that a store of another version lacks.
  std::string Column(const NSEntityDescription& entity, const std::string& attribute) const {
    return tables_.at(entity.name).contains(attribute) ? Quoted(attribute) : "NULL";
  }

  std::string FetchSql(const NSFetchRequest& request) {
    RefreshTables();
    const NSEntityDescription& entity = *model_->entityNamed(request.entityName);
    std::string sql = "SELECT _pk, _version";
    for (const auto& attribute : entity.attributes) sql += ", " + Column(entity, attribute.name);
    sql += " FROM " + Quoted(entity.name);
    if (request.predicate) {
      sql += " WHERE " + Column(entity, request.predicate->attribute);
      sql += request.predicate->form == NSPredicate::Form::isAbsent ? " IS NULL" : " >= ?2";
    }
    sql += " ORDER BY ";
    if (request.sortAttribute) sql += Column(entity, *request.sortAttribute) + ", ";
    return sql + "_pk LIMIT ?1";
  }

  std::vector<ObjectRecord> Fetch(const NSFetchRequest& request) {
    const NSEntityDescription* entity = model_->entityNamed(request.entityName);
    LUMENQUEST_ASSERT(entity != nullptr);
    // One that takes its file for unchangeable would not see what others write to it.
    if (connection_ == nullptr || connection_->isImmutable()) {
      if (!fs::exists(url_)) return {};
      schemaVersion_ = -1;
      Adopt(Connect(url_, readOnly_));
    }
    // One transaction: objects and their members are of one moment.
    SqliteTransaction transaction(*connection_, false);
    RefreshTables();
    if (!tables_.contains(entity->name)) return {};
    std::vector<ObjectRecord> records;
    SqliteStatement statement(*connection_, FetchSql(request));
    statement.Bind(1, request.fetchLimit == 0 ? std::int64_t{-1}
                                              : static_cast<std::int64_t>(request.fetchLimit));
    if (request.predicate && request.predicate->form == NSPredicate::Form::greaterThanOrEqual) {
      BindValue(statement, 2, request.predicate->value);
    }
    while (statement.Step()) {
      ObjectRecord record;
      record.key = statement.Integer(0);
      record.version = statement.Integer(1);
      int column = 2;
      for (const auto& attribute : entity->attributes) {
        record.values.push_back(ReadValue(statement, column++, attribute.type));
      }
      record.toMany.resize(entity->toMany.size());
      records.push_back(std::move(record));
    }
    for (std::size_t i = 0; i < entity->toMany.size(); ++i) {
      const std::string table = MembersTable(*entity, entity->toMany[i]);
      if (!tables_.contains(table)) continue;
      SqliteStatement members(*connection_, "SELECT member FROM " + Quoted(table) +
                                                " WHERE owner = ? ORDER BY position");
      for (ObjectRecord& record : records) {
        members.Bind(1, record.key);
        while (members.Step()) record.toMany[i].push_back(members.Text(0));
        members.Reset();
      }
    }
    return records;
  }

  std::vector<std::int64_t> Save(const SaveRequest& request) {
    if (connection_ == nullptr || readOnly_) {
      throw StoreFailure(kReadOnly, "store_error_read_only", {url_.string()});
    }
    statements_.clear();  // of a save that failed
    SqliteTransaction transaction(*connection_, true);
    const int version = ReadMetadata(*connection_, url_).modelVersion;
    if (version != model_->version) {
      ThrowVersion("store_error_migrated", url_, version, *model_);
    }
    std::vector<std::int64_t> keys;
    keys.reserve(request.inserted.size());
    for (const ObjectChange& change : request.inserted) keys.push_back(Insert(change));
    for (const ObjectChange& change : request.updated) Update(change);
    for (const ObjectChange& change : request.deleted) Delete(change);
    statements_.clear();
    transaction.Commit();
    return keys;
  }

  /// The statement of this text, prepared once a save.
  SqliteStatement& Prepared(const std::string& sql) {
    auto& statement = statements_[sql];
    if (statement == nullptr) statement = std::make_unique<SqliteStatement>(*connection_, sql);
    return *statement;
  }

  std::int64_t Insert(const ObjectChange& change) {
    const NSEntityDescription& entity = *change.entity;
    std::string names = "_version";
    std::string places = "1";
    for (const auto& attribute : entity.attributes) {
      names += ", " + Quoted(attribute.name);
      places += ", ?";
    }
    SqliteStatement& statement =
        Prepared("INSERT INTO " + Quoted(entity.name) + " (" + names + ") VALUES (" + places + ")");
    int parameter = 1;
    for (const auto& value : change.record.values) BindValue(statement, parameter++, value);
    statement.Execute();
    const std::int64_t key = sqlite3_last_insert_rowid(connection_->handle());
    WriteMembers(change, key);
    return key;
  }

  void Update(const ObjectChange& change) {
    const NSEntityDescription& entity = *change.entity;
    std::string sql = "UPDATE " + Quoted(entity.name) + " SET _version = _version + 1";
    for (const auto& attribute : entity.attributes) sql += ", " + Quoted(attribute.name) + " = ?";
    SqliteStatement& statement = Prepared(sql + " WHERE _pk = ? AND _version = ?");
    int parameter = 1;
    for (const auto& value : change.record.values) BindValue(statement, parameter++, value);
    statement.Bind(parameter, change.record.key).Bind(parameter + 1, change.record.version);
    statement.Execute();
    if (sqlite3_changes(connection_->handle()) == 0) ThrowConflict(entity);
    for (const auto& relationship : entity.toMany) {
      Prepared("DELETE FROM " + Quoted(MembersTable(entity, relationship)) + " WHERE owner = ?")
          .Bind(1, change.record.key)
          .Execute();
    }
    WriteMembers(change, change.record.key);
  }

  void Delete(const ObjectChange& change) {
    const std::string table = Quoted(change.entity->name);
    Prepared("DELETE FROM " + table + " WHERE _pk = ? AND _version = ?")
        .Bind(1, change.record.key)
        .Bind(2, change.record.version)
        .Execute();
    if (sqlite3_changes(connection_->handle()) != 0) return;
    // What somebody else deleted is as it was wanted; what he changed is not.
    SqliteStatement& still = Prepared("SELECT 1 FROM " + table + " WHERE _pk = ?");
    const bool changed = still.Bind(1, change.record.key).Step();
    still.Reset();
    if (changed) ThrowConflict(*change.entity);
  }

  void WriteMembers(const ObjectChange& change, std::int64_t key) {
    for (std::size_t i = 0; i < change.entity->toMany.size(); ++i) {
      SqliteStatement& statement =
          Prepared("INSERT INTO " + Quoted(MembersTable(*change.entity, change.entity->toMany[i])) +
                   " (owner, position, member) VALUES (?, ?, ?)");
      std::int64_t position = 0;
      for (const std::string& member : change.record.toMany[i]) {
        statement.Bind(1, key).Bind(2, position++).Bind(3, member).Execute();
      }
    }
  }

  [[noreturn]] static void ThrowConflict(const NSEntityDescription& entity) {
    throw StoreFailure(kConflict, "store_error_conflict", {entity.name});
  }

  fs::path url_;
  std::shared_ptr<const NSManagedObjectModel> model_;
  bool readOnly_;
  std::string identifier_;
  std::unique_ptr<SqliteConnection> connection_;
  std::int64_t schemaVersion_ = -1;
  Tables tables_;
  std::map<std::string, std::unique_ptr<SqliteStatement>> statements_;
};

}  // namespace

SqliteObjectStores::SqliteObjectStores(Role role, std::shared_ptr<platform::UUIDService> uuids)
    : role_(role), uuids_(std::move(uuids)) {}

Outcome<std::shared_ptr<ObjectStore>> SqliteObjectStores::open(
    const fs::path& url, std::shared_ptr<const NSManagedObjectModel> model,
    const StoreOptions& options) {
  return Guard<std::shared_ptr<ObjectStore>>(url, [&]() -> std::shared_ptr<ObjectStore> {
    if (url.empty()) {
      throw StoreFailure(kMissing, "store_error_no_place", {});
    }
    if (model == nullptr || model->entities.empty()) {
      throw StoreFailure(kVersion, "store_error_no_model", {});
    }
    const bool readOnly = role_ == Role::reader || options.isReadOnly;
    std::unique_ptr<SqliteConnection> connection;
    if (!fs::exists(url)) {
      if (!readOnly && options.createsIfMissing) {
        CreateStore(url, *model, uuids_->UUIDString());
      } else if (role_ != Role::reader) {
        throw StoreFailure(kMissing, "store_error_missing", {url.string()});
      } else {
        ThrowIfUnreachable(url);
        return std::make_shared<SqliteObjectStore>(url, model, readOnly, nullptr);
      }
    }
    if (!readOnly) sweepUnfinished(url);
    connection = Connect(url, readOnly);
    const StoreMetadata metadata = ReadMetadata(*connection, url);
    if (metadata.modelName != model->name) {
      throw StoreFailure(kForeign, "store_error_other_model",
                         {url.string(), metadata.modelName, model->name});
    }
    if (metadata.modelVersion != model->version && !readOnly) {
      if (!options.migratesAutomatically || !options.infersMappingModel) {
        ThrowVersion("store_error_not_migrated", url, metadata.modelVersion, *model);
      }
      Migrate(*connection, url, *model);
    }
    return std::make_shared<SqliteObjectStore>(url, model, readOnly, std::move(connection));
  });
}

Outcome<StoreMetadata> SqliteObjectStores::metadata(const fs::path& url) {
  return Guard<StoreMetadata>(url, [&] {
    if (url.empty() || !fs::exists(url)) {
      throw StoreFailure(kMissing, "store_error_missing", {url.string()});
    }
    return ReadMetadata(*Connect(url, true), url);
  });
}

std::optional<NSError> SqliteObjectStores::migrate(ObjectStore& store, const fs::path& toURL) {
  return Guard<bool>(toURL,
                     [&] {
                       auto* source = dynamic_cast<SqliteObjectStore*>(&store);
                       LUMENQUEST_ASSERT(source != nullptr);
                       if (role_ == Role::reader) {
                         throw StoreFailure(kReadOnly, "store_error_read_only",
                                            {store.url().string()});
                       }
                       source->CopyTo(toURL);
                       return true;
                     })
      .error;
}

std::string queryPlan(ObjectStore& store, const NSFetchRequest& request) {
  auto* source = dynamic_cast<SqliteObjectStore*>(&store);
  return source != nullptr ? source->QueryPlan(request) : std::string();
}

}  // namespace lumenquest::adapters
