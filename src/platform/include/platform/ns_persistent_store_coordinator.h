#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "platform/object_store.h"

namespace lumenquest::platform {

/// Stands between contexts and the store of one model.
class NSPersistentStoreCoordinator {
 public:
  explicit NSPersistentStoreCoordinator(std::shared_ptr<const NSManagedObjectModel> model);

  const std::shared_ptr<const NSManagedObjectModel>& managedObjectModel() const { return model_; }

  /// Absent: the store is open. A coordinator has one store.
  std::optional<NSError> addPersistentStore(const std::filesystem::path& URL,
                                            const StoreOptions& options);
  /// Null when there is none.
  std::shared_ptr<ObjectStore> persistentStore() const { return store_; }
  std::shared_ptr<ObjectStore> persistentStoreForURL(const std::filesystem::path& URL) const;
  /// Writes the store to a new place and goes on with it there. Absent: done.
  std::optional<NSError> migratePersistentStore(const std::shared_ptr<ObjectStore>& store,
                                                const std::filesystem::path& toURL,
                                                const StoreOptions& options);

 private:
  std::shared_ptr<const NSManagedObjectModel> model_;
  std::shared_ptr<ObjectStore> store_;
};

/// Whether a store can be used with a model as it is.
bool isConfigurationCompatible(const NSManagedObjectModel& model, const StoreMetadata& metadata);

}  // namespace lumenquest::platform
