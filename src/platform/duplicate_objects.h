#pragma once

#include <vector>

#include "platform/database.h"
#include "platform/planning.h"

namespace lumenquest::platform {

/// When two objects of an entity are equal: exactly the same values, none of them absent, as many
/// images, and places that differ by less than 1e-7 degrees (about a centimetre) in each
/// coordinate.
struct EqualityRule {
  const char* entity;
  std::vector<const char*> sameValues;
  bool comparesPlaceAndImages;

  bool holds(const NSManagedObject& a, const NSManagedObject& b) const;
};

/// The rules of the entities that can have duplicates.
const std::vector<EqualityRule>& equalityRules();

/// The objects that equal an earlier one, each once, in their order: the same ones that
/// Database::duplicateObjectsInArray() finds, in O(n log n).
Database::Objects objectsWithEarlierEqual(const Database::Objects& objects,
                                          const EqualityRule& rule);

}  // namespace lumenquest::platform
