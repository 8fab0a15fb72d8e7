#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/ns_managed_object.h"
#include "platform/ns_persistent_store_coordinator.h"

namespace lumenquest::platform {

/// Objects in memory and their changes, until they are saved together. Bound to the main queue:
/// used from there alone.
class NSManagedObjectContext {
 public:
  using Objects = std::vector<std::shared_ptr<NSManagedObject>>;

  explicit NSManagedObjectContext(std::shared_ptr<NSPersistentStoreCoordinator> coordinator);
  ~NSManagedObjectContext();
  NSManagedObjectContext(const NSManagedObjectContext&) = delete;
  NSManagedObjectContext& operator=(const NSManagedObjectContext&) = delete;

  const std::shared_ptr<NSPersistentStoreCoordinator>& persistentStoreCoordinator() const {
    return coordinator_;
  }

  /// The store's objects as this context has changed them. Without a store: those of the context.
  /// An entity or attribute that the model lacks is an error.
  Outcome<Objects> executeFetchRequest(const NSFetchRequest& request);
  /// A new object, awake. The entity has to be in the model; else null.
  std::shared_ptr<NSManagedObject> insertNewObjectForEntityForName(const std::string& entityName);
  /// Deleting twice, or what belongs to no context, changes nothing.
  void deleteObject(const std::shared_ptr<NSManagedObject>& object);
  bool hasChanges() const;
  /// Saves all changes or none; with an error they stay in the context. Absent: saved.
  std::optional<NSError> save();
  /// Forgets all changes and lets go of all objects, which keep their values as they stand.
  void reset();

 private:
  friend class NSManagedObject;
  using State = NSManagedObject::State;
  using Registered = std::unordered_map<std::int64_t, std::weak_ptr<NSManagedObject>>;

  std::shared_ptr<NSManagedObject> Register(const NSEntityDescription& entity, ObjectRecord record);
  std::optional<NSError> Validate() const;

  std::shared_ptr<NSPersistentStoreCoordinator> coordinator_;
  std::map<const NSEntityDescription*, Registered> registered_;
  Objects inserted_;
  Objects updated_;
  Objects deleted_;
  std::int64_t lastTemporaryKey_ = 0;
};

}  // namespace lumenquest::platform
