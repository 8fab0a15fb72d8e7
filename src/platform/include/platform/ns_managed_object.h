#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ns_managed_object_model.h"
#include "platform/object_store.h"

namespace lumenquest::platform {

class NSManagedObjectContext;

/// Names an object for ever, once it has been saved; before, for the life of its context.
struct NSManagedObjectID {
  std::string storeIdentifier;
  std::string entityName;
  std::int64_t key = 0;
  bool isTemporaryID = true;

  /// x-store://<store>/<entity>/p<key>, with a t in place of the p while the object is unsaved.
  std::string URIRepresentation() const;

  bool operator==(const NSManagedObjectID&) const = default;
};

/// One object of a context. Objects are made by contexts alone; the same stored object is one
/// object in a context as long as somebody holds it. Asking for a name that the entity lacks is a
/// programming error, and so is a value of another type; whole numbers fit where numbers stand.
class NSManagedObject : public std::enable_shared_from_this<NSManagedObject> {
 public:
  explicit NSManagedObject(const NSEntityDescription& entity);
  virtual ~NSManagedObject() = default;
  NSManagedObject(const NSManagedObject&) = delete;
  NSManagedObject& operator=(const NSManagedObject&) = delete;

  const NSEntityDescription& entity() const { return *entity_; }
  const NSManagedObjectID& objectID() const { return objectID_; }
  /// Deleted from the context, and not saved yet.
  bool isDeleted() const { return state_ == State::deleted; }

  const AttributeValue& valueForKey(std::string_view attribute) const;
  void setValue(AttributeValue value, std::string_view forKey);
  std::optional<std::string> stringForKey(std::string_view attribute) const;
  std::optional<double> numberForKey(std::string_view attribute) const;
  std::optional<NSDate> dateForKey(std::string_view attribute) const;

  const std::vector<std::string>& membersForKey(std::string_view relationship) const;
  void setMembers(std::vector<std::string> members, std::string_view forKey);

  /// Runs once in an object's life, when it is inserted.
  virtual void awakeFromInsert() {}

 private:
  friend class NSManagedObjectContext;
  /// `detached` belongs to no context any more.
  enum class State { detached, inserted, clean, updated, deleted };

  void NoteChange();

  const NSEntityDescription* entity_;
  NSManagedObjectContext* context_ = nullptr;
  /// Keeps the entity alive.
  std::shared_ptr<const NSManagedObjectModel> model_;
  NSManagedObjectID objectID_;
  ObjectRecord record_;
  State state_ = State::detached;
};

}  // namespace lumenquest::platform
