#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/ns_date.h"

namespace lumenquest::platform {

enum class AttributeType { string, number, integer, date };

/// Value of an attribute; std::monostate is the absent one.
using AttributeValue = std::variant<std::monostate, std::string, double, std::int64_t, NSDate>;

/// Whether a value may stand in an attribute of a type; the absent value may in all of them.
bool isValueOfType(const AttributeValue& value, AttributeType type);

struct NSAttributeDescription {
  std::string name;
  AttributeType type = AttributeType::string;
  /// Fetches by this attribute have to be quick.
  bool isIndexed = false;
};

/// A kind of object. Names are ASCII letters and digits, a letter first.
struct NSEntityDescription {
  std::string name;
  /// Class of its objects; empty for the plain managed object.
  std::string managedObjectClassName;
  std::vector<NSAttributeDescription> attributes;
  /// Names of the to-many relationships. Members are texts that the object owns (names of image
  /// files), in order.
  std::vector<std::string> toMany;

  std::optional<std::size_t> indexOfAttribute(std::string_view attribute) const;
  std::optional<std::size_t> indexOfToMany(std::string_view relationship) const;
};

/// What a store may hold: one version of a model, with the earlier ones from which a store can be
/// brought up to it.
struct NSManagedObjectModel {
  std::string name;
  int version = 0;
  std::vector<NSEntityDescription> entities;
  std::vector<std::shared_ptr<const NSManagedObjectModel>> earlierVersions;

  const NSEntityDescription* entityNamed(std::string_view entity) const;
  /// Null when the version is not among the earlier ones.
  std::shared_ptr<const NSManagedObjectModel> earlierVersion(int number) const;
};

}  // namespace lumenquest::platform
