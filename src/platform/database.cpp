#include "platform/database.h"

#include <utility>

#include "duplicate_objects.h"
#include "platform/localized_strings.h"
#include "platform/planning.h"
#include "platform/services.h"

namespace lumenquest::platform {

namespace {

constexpr const char* kStoreName = "Lumenquest";
constexpr const char* kStaticStoreName = "LumenquestStatic";
constexpr const char* kStoreExtension = "sqlite";
constexpr const char* kVersionedModelExtension = "momd";
constexpr const char* kModelExtension = "mom";

/// A resource's place; empty when there is none.
std::filesystem::path ResourceURL(const char* name, const char* extension) {
  return Services::current().fileManager().resource(name, extension).value_or("");
}

std::shared_ptr<const NSManagedObjectModel> LoadModel(const std::filesystem::path& url) {
  auto model = Services::current().models().modelWithContentsOfURL(url);
  if (!model.error) return model.value;
  Services::current().log().write(stringWithFormat(
      "Unresolved error %@, %@", {model.error->description(), model.error->userInfoDescription()}));
  return std::make_shared<const NSManagedObjectModel>();
}

}  // namespace

Database& Database::sharedInstance() { return Services::current().sharedDatabase(); }

std::filesystem::path Database::applicationDocumentsDirectory() const {
  const auto directories = Services::current().fileManager().documentDirectories();
  return directories.empty() ? std::filesystem::path() : directories.back();
}

std::optional<std::filesystem::path> Database::groupApplicationDocumentDirectory() const {
  return Services::current().fileManager().containerOfGroup(kApplicationGroup);
}

std::filesystem::path Database::groupStoreURL() const {
  const auto folder = groupApplicationDocumentDirectory();
  if (!folder) return {};
  return *folder / (std::string(kStoreName) + "." + kStoreExtension);
}

std::filesystem::path Database::modelURL() const {
  const auto versioned = ResourceURL(kStoreName, kVersionedModelExtension);
  return versioned.empty() ? ResourceURL(kStoreName, kModelExtension) : versioned;
}

std::shared_ptr<const NSManagedObjectModel> Database::managedObjectModel() {
  if (managedObjectModel_ == nullptr) managedObjectModel_ = LoadModel(modelURL());
  return managedObjectModel_;
}

std::shared_ptr<NSPersistentStoreCoordinator> Database::persistentStoreCoordinator() {
  if (persistentStoreCoordinator_ != nullptr) return persistentStoreCoordinator_;
  StoreOptions options;
  options.migratesAutomatically = true;
  options.infersMappingModel = true;
  persistentStoreCoordinator_ =
      std::make_shared<NSPersistentStoreCoordinator>(managedObjectModel());
  if (const auto error =
          persistentStoreCoordinator_->addPersistentStore(groupStoreURL(), options)) {
    Report(*error, "persistent_store_unresolved_error_message_ios",
           "persistent_store_unresolved_error_title");
  }
  return persistentStoreCoordinator_;
}

std::shared_ptr<NSManagedObjectContext> Database::managedObjectContext() {
  if (managedObjectContext_ != nullptr) return managedObjectContext_;
  translatePrePopulatedStore_ = false;
  auto coordinator = persistentStoreCoordinator();
  if (coordinator == nullptr) return nullptr;
  managedObjectContext_ = std::make_shared<NSManagedObjectContext>(std::move(coordinator));
  return managedObjectContext_;
}

std::shared_ptr<const NSManagedObjectModel> Database::staticManagedObjectModel() {
  if (staticManagedObjectModel_ == nullptr) {
    staticManagedObjectModel_ = LoadModel(ResourceURL(kStaticStoreName, kVersionedModelExtension));
  }
  return staticManagedObjectModel_;
}

std::shared_ptr<NSPersistentStoreCoordinator> Database::staticPersistentStoreCoordinator() {
  if (staticPersistentStoreCoordinator_ != nullptr) return staticPersistentStoreCoordinator_;
  StoreOptions options;
  options.isReadOnly = true;
  staticPersistentStoreCoordinator_ =
      std::make_shared<NSPersistentStoreCoordinator>(staticManagedObjectModel());
  if (const auto error = staticPersistentStoreCoordinator_->addPersistentStore(
          ResourceURL(kStaticStoreName, kStoreExtension), options)) {
    Report(*error, "static_persistent_store_unresolved_error_message_ios",
           "static_persistent_store_unresolved_error_title");
  }
  return staticPersistentStoreCoordinator_;
}

std::shared_ptr<NSManagedObjectContext> Database::staticManagedObjectContext() {
  if (staticManagedObjectContext_ != nullptr) return staticManagedObjectContext_;
  auto coordinator = staticPersistentStoreCoordinator();
  if (coordinator == nullptr) return nullptr;
  staticManagedObjectContext_ = std::make_shared<NSManagedObjectContext>(std::move(coordinator));
  return staticManagedObjectContext_;
}

void Database::Report(const NSError& error, const std::string& messageKey,
                      const std::string& titleKey) {
  Services::current().log().write(stringWithFormat(
      "Unresolved error %@, %@", {error.description(), error.userInfoDescription()}));
  const std::string message =
      stringWithFormat(localizedString(messageKey, kTableCommon), {error.localizedDescription()});
  if (const auto observer = delegate()) {
    observer->databasePersistentStoreCoordinatorDidGetError(
        message, localizedString(titleKey, kTableCommon));
  }
}

bool Database::isMigrationNeeded() const {
  const auto metadata =
      Services::current().persistentStores().metadata(sharedInstance().groupStoreURL());
  return !metadata.error &&
         !isConfigurationCompatible(*sharedInstance().managedObjectModel(), metadata.value);
}

bool Database::migrateDatabase(const std::filesystem::path& oldURL,
                               const std::filesystem::path& toNewDatabase) {
  StoreOptions options;
  options.migratesAutomatically = true;
  options.infersMappingModel = true;
  options.createsIfMissing = false;
  NSPersistentStoreCoordinator coordinator(managedObjectModel());
  if (coordinator.addPersistentStore(oldURL, options)) return false;
  const auto store = coordinator.persistentStoreForURL(oldURL);
  return store == nullptr ||
         !coordinator.migratePersistentStore(store, toNewDatabase, options).has_value();
}

void Database::performUpdatesFrom3To4() {
  if (managedObjectModel_ == nullptr || managedObjectContext_ == nullptr) return;
  for (const NSEntityDescription& entity : managedObjectModel_->entities) {
    const auto objects = managedObjectContext_->executeFetchRequest(
        {entity.name, NSPredicate::isAbsent(kAttributeUniqueIdentifier)});
    for (const auto& object : objects.value) {
      if (object->stringForKey(kAttributeUniqueIdentifier).value_or("").empty()) {
        object->setValue(Services::current().uuids().UUIDString(), kAttributeUniqueIdentifier);
      }
    }
  }
  // Objects that could not be saved are found again at the next upgrade.
  static_cast<void>(managedObjectContext_->save());
  managedObjectContext_->reset();
}

Database::Objects Database::duplicateObjectsInArray(const Objects& array,
                                                    const Compare& withCompare) {
  Objects duplicates;
  for (std::size_t i = 0; i < array.size(); ++i) {
    for (std::size_t j = i + 1; j < array.size(); ++j) {
      if (withCompare(*array[i], *array[j])) duplicates.push_back(array[j]);
    }
  }
  return duplicates;
}

void Database::removeDuplicatesWithCompletion(Completion completion) {
  Services::current().mainQueue().async([this, completion = std::move(completion)] {
    Objects duplicates;
    for (const EqualityRule& rule : equalityRules()) {
      if (managedObjectContext_ == nullptr) break;
      const auto objects = managedObjectContext_->executeFetchRequest({rule.entity});
      const Objects found = objectsWithEarlierEqual(objects.value, rule);
      duplicates.insert(duplicates.end(), found.begin(), found.end());
    }
    if (duplicates.empty()) {
      completion(std::nullopt);
      return;
    }
    for (const auto& object : duplicates) managedObjectContext_->deleteObject(object);
    completion(managedObjectContext_->save());
  });
}

}  // namespace lumenquest::platform
