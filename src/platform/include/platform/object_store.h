#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/ns_error.h"
#include "platform/ns_fetch_request.h"
#include "platform/ns_managed_object_model.h"

namespace lumenquest::platform {

/// What a store file says of itself.
struct StoreMetadata {
  /// UUID of the store; part of its objects' identifiers.
  std::string storeIdentifier;
  std::string modelName;
  int modelVersion = 0;
};

/// How to open a store.
struct StoreOptions {
  bool isReadOnly = false;
  /// Bring a store of an earlier model version up to the model's.
  bool migratesAutomatically = false;
  /// Derive how from the two versions: attributes and entities that came or went.
  bool infersMappingModel = false;
  /// Make the store where there is none.
  bool createsIfMissing = true;
};

/// An object as a store keeps it; values and members in the entity's order.
struct ObjectRecord {
  /// Of the entity's objects in this store; never given twice, also after a deletion.
  std::int64_t key = 0;
  /// Counts the saves of the object, so that two writers notice each other.
  std::int64_t version = 0;
  std::vector<AttributeValue> values;
  std::vector<std::vector<std::string>> toMany;
};

struct ObjectChange {
  const NSEntityDescription* entity = nullptr;
  ObjectRecord record;
};

/// Changes that are saved together or not at all.
struct SaveRequest {
  std::vector<ObjectChange> inserted;
  std::vector<ObjectChange> updated;
  std::vector<ObjectChange> deleted;
};

/// An open store.
class ObjectStore {
 public:
  virtual ~ObjectStore() = default;

  virtual std::filesystem::path url() const = 0;
  virtual std::string identifier() const = 0;
  /// The request names the entity and attributes of the model that the store was opened with.
  virtual Outcome<std::vector<ObjectRecord>> fetch(const NSFetchRequest& request) = 0;
  /// Gives the keys of the inserted objects. An updated or deleted object that another writer has
  /// changed since its record was fetched is an error, and nothing is saved.
  virtual Outcome<std::vector<std::int64_t>> save(const SaveRequest& request) = 0;
};

/// Opens store files.
class PersistentStoreService {
 public:
  virtual ~PersistentStoreService() = default;

  virtual Outcome<std::shared_ptr<ObjectStore>> open(
      const std::filesystem::path& url, std::shared_ptr<const NSManagedObjectModel> model,
      const StoreOptions& options) = 0;
  virtual Outcome<StoreMetadata> metadata(const std::filesystem::path& url) = 0;
  /// Writes the store whole to a place where there is no file yet, with the same identifiers; the
  /// old file stays as it is. Absent error: done.
  virtual std::optional<NSError> migrate(ObjectStore& store,
                                         const std::filesystem::path& toURL) = 0;
};

/// Reads model resources.
class ModelService {
 public:
  virtual ~ModelService() = default;
  virtual Outcome<std::shared_ptr<const NSManagedObjectModel>> modelWithContentsOfURL(
      const std::filesystem::path& url) = 0;
};

}  // namespace lumenquest::platform
