#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/ns_error.h"
#include "platform/ns_user_defaults.h"

namespace lumenquest::adapters {

class SqliteConnection;

/// Settings in a SQLite file that several processes use at once. Every write outside atomically()
/// is a transaction of its own: the last writer wins, key by key, and a process that dies leaves
/// whole values.
///
/// The file and its folder are made by the first write; until then every key is absent. A file that
/// cannot be read, or is no settings file, is left as it is: readers find nothing, writers do
/// nothing, and error() tells why.
class SqliteUserDefaults final : public platform::NSUserDefaults {
 public:
  explicit SqliteUserDefaults(std::string path);
  ~SqliteUserDefaults() override;

  std::optional<Value> objectForKey(const std::string& key) const override;
  void setObject(const std::optional<Value>& value, const std::string& forKey) override;
  Dictionary dictionaryRepresentation() const override;
  /// Where the file cannot be written, or is not there yet, only this object's threads wait.
  void atomically(const std::function<void()>& body) override;
  /// False when a write since the last call failed.
  bool synchronize() override;

  /// What went wrong last; nothing when all went well.
  std::optional<platform::NSError> error() const;
  const std::string& path() const { return path_; }

 private:
  /// The open file, or null when there is none yet or it is unusable.
  SqliteConnection* Reading() const;
  /// Opens the file for writing, making it where it is missing.
  SqliteConnection& Writing();

  std::string path_;
  mutable std::recursive_mutex mutex_;
  mutable std::unique_ptr<SqliteConnection> connection_;
  mutable std::optional<platform::NSError> error_;
  bool writable_ = false;
  bool writeFailed_ = false;
  bool isAtomic_ = false;
};

}  // namespace lumenquest::adapters
