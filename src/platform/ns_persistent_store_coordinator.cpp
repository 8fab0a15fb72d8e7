#include "platform/ns_persistent_store_coordinator.h"

#include <utility>

#include "platform/services.h"

namespace lumenquest::platform {

NSPersistentStoreCoordinator::NSPersistentStoreCoordinator(
    std::shared_ptr<const NSManagedObjectModel> model)
    : model_(std::move(model)) {}

std::optional<NSError> NSPersistentStoreCoordinator::addPersistentStore(
    const std::filesystem::path& URL, const StoreOptions& options) {
  auto opened = Services::current().persistentStores().open(URL, model_, options);
  if (!opened.error) store_ = std::move(opened.value);
  return opened.error;
}

std::shared_ptr<ObjectStore> NSPersistentStoreCoordinator::persistentStoreForURL(
    const std::filesystem::path& URL) const {
  return store_ != nullptr && store_->url() == URL ? store_ : nullptr;
}

std::optional<NSError> NSPersistentStoreCoordinator::migratePersistentStore(
    const std::shared_ptr<ObjectStore>& store, const std::filesystem::path& toURL,
    const StoreOptions& options) {
  if (auto error = Services::current().persistentStores().migrate(*store, toURL)) return error;
  return addPersistentStore(toURL, options);
}

bool isConfigurationCompatible(const NSManagedObjectModel& model, const StoreMetadata& metadata) {
  return metadata.modelName == model.name && metadata.modelVersion == model.version;
}

}  // namespace lumenquest::platform
