#include "platform/ns_managed_object_context.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/planning.h"

namespace lumenquest::platform {

namespace {

std::shared_ptr<NSManagedObject> NewObject(const NSEntityDescription& entity) {
  if (entity.managedObjectClassName == "Planning") return std::make_shared<Planning>(entity);
  return std::make_shared<NSManagedObject>(entity);
}

NSError ContextError(int code, std::string key, std::vector<std::string> arguments) {
  return {"Context", code, std::move(key), std::move(arguments)};
}

bool IsFinite(const AttributeValue& value) {
  if (const auto* number = std::get_if<double>(&value)) return std::isfinite(*number);
  if (const auto* date = std::get_if<NSDate>(&value)) {
    return std::isfinite(date->timeIntervalSinceReferenceDate());
  }
  return true;
}

}  // namespace

NSManagedObjectContext::NSManagedObjectContext(
    std::shared_ptr<NSPersistentStoreCoordinator> coordinator)
    : coordinator_(std::move(coordinator)) {}

NSManagedObjectContext::~NSManagedObjectContext() { reset(); }

std::shared_ptr<NSManagedObject> NSManagedObjectContext::Register(const NSEntityDescription& entity,
                                                                  ObjectRecord record) {
  std::weak_ptr<NSManagedObject>& known = registered_[&entity][record.key];
  std::shared_ptr<NSManagedObject> object = known.lock();
  if (object == nullptr) {
    object = NewObject(entity);
    object->context_ = this;
    object->model_ = coordinator_->managedObjectModel();
    object->objectID_ = {coordinator_->persistentStore()->identifier(), entity.name, record.key,
                         false};
    object->state_ = State::clean;
    known = object;
  }
  // What was changed here stays as it was changed, with the version that it was changed from.
  if (object->state_ == State::clean) object->record_ = std::move(record);
  return object;
}

Outcome<NSManagedObjectContext::Objects> NSManagedObjectContext::executeFetchRequest(
    const NSFetchRequest& request) {
  const NSEntityDescription* entity =
      coordinator_->managedObjectModel()->entityNamed(request.entityName);
  if (entity == nullptr) {
    return ContextError(1, "store_error_no_entity", {request.entityName});
  }
  for (const auto& attribute :
       {request.predicate ? std::optional(request.predicate->attribute) : std::nullopt,
        request.sortAttribute}) {
    if (attribute && !entity->indexOfAttribute(*attribute)) {
      return ContextError(2, "store_error_no_attribute", {entity->name, *attribute});
    }
  }

  const auto ofEntity = [&](const auto& object) { return object->entity_ == entity; };
  // Each changed object may stand in the store's answer and not in ours.
  const auto changed =
      static_cast<std::size_t>(std::count_if(updated_.begin(), updated_.end(), ofEntity) +
                               std::count_if(deleted_.begin(), deleted_.end(), ofEntity));
  NSFetchRequest stored = request;
  if (request.fetchLimit != 0) stored.fetchLimit += changed;

  Objects objects;
  if (const auto store = coordinator_->persistentStore()) {
    auto records = store->fetch(stored);
    if (records.error) return *records.error;
    objects.reserve(records.value.size());
    for (ObjectRecord& record : records.value) {
      auto object = Register(*entity, std::move(record));
      if (object->state_ == State::clean) objects.push_back(std::move(object));
    }
  }
  const std::size_t cleanCount = objects.size();
  for (const Objects* pending : {&updated_, &inserted_}) {
    for (const auto& object : *pending) {
      if (!ofEntity(object) || object->isDeleted()) continue;
      if (request.predicate &&
          !request.predicate->holdsFor(object->valueForKey(request.predicate->attribute))) {
        continue;
      }
      objects.push_back(object);
    }
  }
  if (objects.size() != cleanCount) {
    std::stable_sort(objects.begin(), objects.end(), [&](const auto& a, const auto& b) {
      if (request.sortAttribute) {
        const AttributeValue& left = a->valueForKey(*request.sortAttribute);
        const AttributeValue& right = b->valueForKey(*request.sortAttribute);
        if (left != right) return left < right;
      }
      return std::pair(a->objectID_.isTemporaryID, a->objectID_.key) <
             std::pair(b->objectID_.isTemporaryID, b->objectID_.key);
    });
  }
  if (request.fetchLimit != 0 && objects.size() > request.fetchLimit) {
    objects.resize(request.fetchLimit);
  }
  return objects;
}

std::shared_ptr<NSManagedObject> NSManagedObjectContext::insertNewObjectForEntityForName(
    const std::string& entityName) {
  const NSEntityDescription* entity = coordinator_->managedObjectModel()->entityNamed(entityName);
  if (entity == nullptr) return nullptr;
  auto object = NewObject(*entity);
  object->context_ = this;
  object->model_ = coordinator_->managedObjectModel();
  object->objectID_.key = ++lastTemporaryKey_;
  object->state_ = State::inserted;
  inserted_.push_back(object);
  object->awakeFromInsert();
  return object;
}

void NSManagedObjectContext::deleteObject(const std::shared_ptr<NSManagedObject>& object) {
  if (object->context_ != this || object->isDeleted()) return;
  if (object->state_ == State::inserted) {
    std::erase(inserted_, object);
    object->state_ = State::detached;
    object->context_ = nullptr;
    return;
  }
  if (object->state_ == State::updated) std::erase(updated_, object);
  object->state_ = State::deleted;
  deleted_.push_back(object);
}

bool NSManagedObjectContext::hasChanges() const {
  return !inserted_.empty() || !updated_.empty() || !deleted_.empty();
}

std::optional<NSError> NSManagedObjectContext::Validate() const {
  for (const Objects* pending : {&inserted_, &updated_}) {
    for (const auto& object : *pending) {
      const NSEntityDescription& entity = *object->entity_;
      for (std::size_t i = 0; i < entity.attributes.size(); ++i) {
        if (IsFinite(object->record_.values[i])) continue;
        return ContextError(3, "store_error_not_finite", {entity.attributes[i].name, entity.name});
      }
    }
  }
  return std::nullopt;
}

std::optional<NSError> NSManagedObjectContext::save() {
  if (!hasChanges()) return std::nullopt;
  const auto store = coordinator_->persistentStore();
  if (store == nullptr) return ContextError(4, "store_error_none_open", {});
  if (auto error = Validate()) return error;

  SaveRequest request;
  const auto add = [](std::vector<ObjectChange>& changes, const Objects& objects) {
    changes.reserve(objects.size());
    for (const auto& object : objects) changes.push_back({object->entity_, object->record_});
  };
  add(request.inserted, inserted_);
  add(request.updated, updated_);
  add(request.deleted, deleted_);
  const auto keys = store->save(request);
  if (keys.error) return keys.error;

  for (std::size_t i = 0; i < inserted_.size(); ++i) {
    NSManagedObject& object = *inserted_[i];
    object.record_.key = keys.value[i];
    object.record_.version = 1;
    object.objectID_ = {store->identifier(), object.entity_->name, keys.value[i], false};
    object.state_ = State::clean;
    registered_[object.entity_][keys.value[i]] = inserted_[i];
  }
  for (const auto& object : updated_) {
    ++object->record_.version;
    object->state_ = State::clean;
  }
  for (const auto& object : deleted_) {
    registered_[object->entity_].erase(object->record_.key);
    object->state_ = State::detached;
    object->context_ = nullptr;
  }
  inserted_.clear();
  updated_.clear();
  deleted_.clear();
  return std::nullopt;
}

void NSManagedObjectContext::reset() {
  const auto detach = [](NSManagedObject& object) {
    object.state_ = State::detached;
    object.context_ = nullptr;
  };
  for (const auto& object : inserted_) detach(*object);
  for (const auto& [entity, objects] : registered_) {
    for (const auto& [key, weak] : objects) {
      if (const auto object = weak.lock()) detach(*object);
    }
  }
  inserted_.clear();
  updated_.clear();
  deleted_.clear();
  registered_.clear();
}

}  // namespace lumenquest::platform
