#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/ns_managed_object_context.h"

namespace lumenquest::platform {

/// Is told when a store cannot be opened.
class DatabaseDelegate {
 public:
  virtual ~DatabaseDelegate() = default;
  virtual void databasePersistentStoreCoordinatorDidGetError(const std::string& /*message*/,
                                                             const std::string& /*title*/) {}
};

/// The user's saved plans, points of interest and cameras, in a store that the application and its
/// widgets share, and beside it the read-only store of reference data in the application's bundle.
///
/// Models, coordinators and contexts are made when first asked for, on the main queue, and kept. A
/// store that could not be opened is not tried again: its context then fetches nothing.
class Database {
 public:
  using Objects = NSManagedObjectContext::Objects;
  using Compare = std::function<bool(const NSManagedObject& a, const NSManagedObject& b)>;
  using Completion = std::function<void(const std::optional<NSError>& error)>;

  /// The process-wide instance.
  static Database& sharedInstance();

  Database() = default;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  // Places. An empty path is an absent one.

  /// The application's private documents.
  std::filesystem::path applicationDocumentsDirectory() const;
  std::optional<std::filesystem::path> groupApplicationDocumentDirectory() const;
  std::filesystem::path groupStoreURL() const;
  std::filesystem::path modelURL() const;

  // The user's store. A model that cannot be read is an empty one.

  std::shared_ptr<const NSManagedObjectModel> managedObjectModel();
  std::shared_ptr<NSPersistentStoreCoordinator> persistentStoreCoordinator();
  /// Null when there is no coordinator.
  std::shared_ptr<NSManagedObjectContext> managedObjectContext();

  // The store of reference data.

  std::shared_ptr<const NSManagedObjectModel> staticManagedObjectModel();
  std::shared_ptr<NSPersistentStoreCoordinator> staticPersistentStoreCoordinator();
  std::shared_ptr<NSManagedObjectContext> staticManagedObjectContext();

  /// Whether the user's store is of another version than the model. False as well when there is no
  /// store, or none that can be read: then there is nothing to migrate.
  bool isMigrationNeeded() const;
  /// Writes the store at the old place to the new one, where no file may be yet. False: nothing is
  /// there. The old file stays, for the caller to delete once he is content.
  bool migrateDatabase(const std::filesystem::path& oldURL,
                       const std::filesystem::path& toNewDatabase);
  /// Gives an identifier to every object that lacks one: version 4 of the model brought them. Does
  /// nothing before the model and the context have been asked for.
  void performUpdatesFrom3To4();

  /// The later member of every pair of equals, in the order of the pairs; an object with several
  /// earlier equals comes several times. Compares every pair: O(n²).
  static Objects duplicateObjectsInArray(const Objects& array, const Compare& withCompare);
  /// Deletes the duplicates of all entities, later, on the main queue. Does nothing before the
  /// context has been asked for. Objects are equal when places differ by less than 1e-7 degrees and
  /// all else is the same; what lacks a part that is compared equals nothing. Deletes the objects
  /// that duplicateObjectsInArray() would list, in O(n log n). `completion` gets the error of the
  /// save.
  void removeDuplicatesWithCompletion(Completion completion);

  std::shared_ptr<DatabaseDelegate> delegate() const { return delegate_.lock(); }
  void setDelegate(const std::weak_ptr<DatabaseDelegate>& delegate) { delegate_ = delegate; }

  bool translatePrePopulatedStore() const { return translatePrePopulatedStore_; }

 private:
  void Report(const NSError& error, const std::string& messageKey, const std::string& titleKey);

  bool translatePrePopulatedStore_ = false;
  std::shared_ptr<NSManagedObjectContext> managedObjectContext_;
  std::shared_ptr<const NSManagedObjectModel> managedObjectModel_;
  std::shared_ptr<NSPersistentStoreCoordinator> persistentStoreCoordinator_;
  std::shared_ptr<NSManagedObjectContext> staticManagedObjectContext_;
  std::shared_ptr<const NSManagedObjectModel> staticManagedObjectModel_;
  std::shared_ptr<NSPersistentStoreCoordinator> staticPersistentStoreCoordinator_;
  std::weak_ptr<DatabaseDelegate> delegate_;
};

}  // namespace lumenquest::platform
