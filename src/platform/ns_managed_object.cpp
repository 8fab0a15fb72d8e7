#include "platform/ns_managed_object.h"

#include <utility>

#include "platform/assertion.h"
#include "platform/ns_managed_object_context.h"

namespace lumenquest::platform {

namespace {

template <typename Type>
std::optional<Type> ValueAs(const AttributeValue& value) {
  const Type* held = std::get_if<Type>(&value);
  return held != nullptr ? std::optional<Type>(*held) : std::nullopt;
}

}  // namespace

std::string NSManagedObjectID::URIRepresentation() const {
  return "x-store://" + storeIdentifier + "/" + entityName + (isTemporaryID ? "/t" : "/p") +
         std::to_string(key);
}

NSManagedObject::NSManagedObject(const NSEntityDescription& entity) : entity_(&entity) {
  objectID_.entityName = entity.name;
  record_.values.resize(entity.attributes.size());
  record_.toMany.resize(entity.toMany.size());
}

const AttributeValue& NSManagedObject::valueForKey(std::string_view attribute) const {
  const auto index = entity_->indexOfAttribute(attribute);
  LUMENQUEST_ASSERT(index.has_value());
  return record_.values[*index];
}

void NSManagedObject::setValue(AttributeValue value, std::string_view forKey) {
  const auto index = entity_->indexOfAttribute(forKey);
  LUMENQUEST_ASSERT(index.has_value());
  const AttributeType type = entity_->attributes[*index].type;
  if (const auto* whole = std::get_if<std::int64_t>(&value);
      whole != nullptr && type == AttributeType::number) {
    value = static_cast<double>(*whole);
  }
  LUMENQUEST_ASSERT(isValueOfType(value, type));
  record_.values[*index] = std::move(value);
  NoteChange();
}

std::optional<std::string> NSManagedObject::stringForKey(std::string_view attribute) const {
  return ValueAs<std::string>(valueForKey(attribute));
}

std::optional<double> NSManagedObject::numberForKey(std::string_view attribute) const {
  const AttributeValue& value = valueForKey(attribute);
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
  return ValueAs<double>(value);
}

std::optional<NSDate> NSManagedObject::dateForKey(std::string_view attribute) const {
  return ValueAs<NSDate>(valueForKey(attribute));
}

const std::vector<std::string>& NSManagedObject::membersForKey(
    std::string_view relationship) const {
  const auto index = entity_->indexOfToMany(relationship);
  LUMENQUEST_ASSERT(index.has_value());
  return record_.toMany[*index];
}

void NSManagedObject::setMembers(std::vector<std::string> members, std::string_view forKey) {
  const auto index = entity_->indexOfToMany(forKey);
  LUMENQUEST_ASSERT(index.has_value());
  record_.toMany[*index] = std::move(members);
  NoteChange();
}

void NSManagedObject::NoteChange() {
  if (state_ != State::clean) return;
  state_ = State::updated;
  context_->updated_.push_back(shared_from_this());
}

}  // namespace lumenquest::platform
