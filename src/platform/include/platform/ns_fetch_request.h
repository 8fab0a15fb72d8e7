#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/ns_managed_object_model.h"

namespace lumenquest::platform {

/// A condition on one attribute.
struct NSPredicate {
  enum class Form { greaterThanOrEqual, isAbsent };

  /// attribute >= value. Absent values meet no such condition; text compares by its bytes.
  static NSPredicate greaterThanOrEqual(std::string attribute, AttributeValue value);
  /// attribute = NIL
  static NSPredicate isAbsent(std::string attribute);

  bool holdsFor(const AttributeValue& candidate) const;

  std::string attribute;
  Form form = Form::isAbsent;
  AttributeValue value;
};

/// Which objects of an entity, in which order, and how many.
struct NSFetchRequest {
  std::string entityName;
  std::optional<NSPredicate> predicate{};
  /// Attribute to sort by, ascending, absent values first, ties in store order; none is the store's
  /// own order, which is that of insertion.
  std::optional<std::string> sortAttribute{};
  /// 0 is no limit.
  std::size_t fetchLimit = 0;
};

}  // namespace lumenquest::platform
