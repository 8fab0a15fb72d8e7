#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/services.h"

namespace lumenquest::adapters {

/// Stores in SQLite files, for any number of processes at once.
///
/// A file is one store: a table an entity, a child table a to-many relationship, an index an
/// indexed attribute, and a table that says which model and version the file follows. A file that
/// is not such a store, or is damaged, is an error and stays as it is, byte for byte.
class SqliteObjectStores final : public platform::PersistentStoreService {
 public:
  enum class Role {
    /// The application: makes stores and brings them up to the model's version.
    owner,
    /// The widgets: never writes to a file. Where there is no file the store is an empty one, until
    /// somebody makes it. A store of another version is read as far as entities and attributes have
    /// the same names; the rest is absent.
    reader
  };

  SqliteObjectStores(Role role, std::shared_ptr<platform::UUIDService> uuids);

  platform::Outcome<std::shared_ptr<platform::ObjectStore>> open(
      const std::filesystem::path& url, std::shared_ptr<const platform::NSManagedObjectModel> model,
      const platform::StoreOptions& options) override;
  platform::Outcome<platform::StoreMetadata> metadata(const std::filesystem::path& url) override;
  std::optional<platform::NSError> migrate(platform::ObjectStore& store,
                                           const std::filesystem::path& toURL) override;

 private:
  Role role_;
  std::shared_ptr<platform::UUIDService> uuids_;
};

/// How SQLite goes about a fetch, in its own words, a step a line; empty when it cannot say. For
/// tests and measurements.
std::string queryPlan(platform::ObjectStore& store, const platform::NSFetchRequest& request);

}  // namespace lumenquest::adapters
