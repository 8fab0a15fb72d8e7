#include "platform/ns_managed_object_model.h"

#include <algorithm>

namespace lumenquest::platform {

bool isValueOfType(const AttributeValue& value, AttributeType type) {
  if (std::holds_alternative<std::monostate>(value)) return true;
  switch (type) {
    case AttributeType::string:
      return std::holds_alternative<std::string>(value);
    case AttributeType::number:
      return std::holds_alternative<double>(value);
    case AttributeType::integer:
      return std::holds_alternative<std::int64_t>(value);
    case AttributeType::date:
      return std::holds_alternative<NSDate>(value);
  }
  return false;
}

std::optional<std::size_t> NSEntityDescription::indexOfAttribute(std::string_view attribute) const {
  for (std::size_t i = 0; i < attributes.size(); ++i) {
    if (attributes[i].name == attribute) return i;
  }
  return std::nullopt;
}

std::optional<std::size_t> NSEntityDescription::indexOfToMany(std::string_view relationship) const {
  for (std::size_t i = 0; i < toMany.size(); ++i) {
    if (toMany[i] == relationship) return i;
  }
  return std::nullopt;
}

const NSEntityDescription* NSManagedObjectModel::entityNamed(std::string_view entity) const {
  const auto found = std::find_if(entities.begin(), entities.end(),
                                  [&](const auto& candidate) { return candidate.name == entity; });
  return found == entities.end() ? nullptr : &*found;
}

std::shared_ptr<const NSManagedObjectModel> NSManagedObjectModel::earlierVersion(int number) const {
  for (const auto& earlier : earlierVersions) {
    if (earlier->version == number) return earlier;
  }
  return nullptr;
}

}  // namespace lumenquest::platform
