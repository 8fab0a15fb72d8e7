#include "duplicate_objects.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>

namespace lumenquest::platform {

namespace {

/// Degrees.
constexpr double kSamePlace = 1e-7;
/// Degrees: side of the cells by which places are found. Whatever two places are in one cell, they
/// are the same place; two that are the same are at most `kReach` cells apart.
constexpr double kCell = kSamePlace / 2.0;
constexpr std::int64_t kReach = 3;
/// Degrees; beyond, on no globe, a cell's number would not be exact.
constexpr double kMostDegrees = 1e6;

/// What has to be the same exactly; the last value counts the images.
using Key = std::vector<AttributeValue>;
using Cell = std::pair<std::int64_t, std::int64_t>;
using Indexes = std::vector<std::size_t>;

bool IsNumberThatEqualsItself(const AttributeValue& value) {
  if (const auto* number = std::get_if<double>(&value)) return !std::isnan(*number);
  if (const auto* date = std::get_if<NSDate>(&value)) {
    return !std::isnan(date->timeIntervalSinceReferenceDate());
  }
  return true;
}

/// Absent when the object equals nothing.
std::optional<Key> KeyOf(const NSManagedObject& object, const EqualityRule& rule) {
  Key key;
  for (const char* attribute : rule.sameValues) {
    const AttributeValue& value = object.valueForKey(attribute);
    if (std::holds_alternative<std::monostate>(value) || !IsNumberThatEqualsItself(value)) {
      return std::nullopt;
    }
    key.push_back(value);
  }
  if (rule.comparesPlaceAndImages) {
    if (!object.numberForKey(kAttributeLatitude) || !object.numberForKey(kAttributeLongitude)) {
      return std::nullopt;
    }
    key.emplace_back(static_cast<std::int64_t>(object.membersForKey(kRelationshipImages).size()));
  }
  return key;
}

/// Absent for places that are not on the globe.
std::optional<Cell> CellOf(const NSManagedObject& object) {
  const double latitude = *object.numberForKey(kAttributeLatitude);
  const double longitude = *object.numberForKey(kAttributeLongitude);
  if (!(std::fabs(latitude) < kMostDegrees && std::fabs(longitude) < kMostDegrees)) {
    return std::nullopt;
  }
  return Cell(static_cast<std::int64_t>(std::floor(latitude / kCell)),
              static_cast<std::int64_t>(std::floor(longitude / kCell)));
}

/// Marks which of a group, all with the same key, are in the same place as an earlier one.
void MarkSamePlaces(const Database::Objects& objects, const Indexes& group,
                    const EqualityRule& rule, std::vector<bool>& isDuplicate) {
  std::map<Cell, Indexes> cells;
  Indexes offTheGlobe;
  for (const std::size_t index : group) {
    const auto equalsOneOf = [&](const Indexes& earlier) {
      return std::any_of(earlier.begin(), earlier.end(), [&](std::size_t other) {
        return rule.holds(*objects[other], *objects[index]);
      });
    };
    const auto cell = CellOf(*objects[index]);
    if (!cell) {
      isDuplicate[index] = equalsOneOf(offTheGlobe);
      offTheGlobe.push_back(index);
      continue;
    }
    // Others are looked at by the first one of each cell alone, so that a crowd costs no more than
    // its members.
    Indexes& own = cells[*cell];
    bool found = equalsOneOf(own);
    for (std::int64_t i = -kReach; i <= kReach && !found; ++i) {
      for (auto other = cells.lower_bound({cell->first + i, cell->second - kReach});
           other != cells.end() && !found &&
           other->first <= Cell(cell->first + i, cell->second + kReach);
           ++other) {
        found = other->first != *cell && equalsOneOf(other->second);
      }
    }
    isDuplicate[index] = found;
    own.push_back(index);
  }
}

}  // namespace

bool EqualityRule::holds(const NSManagedObject& a, const NSManagedObject& b) const {
  if (comparesPlaceAndImages) {
    for (const char* attribute : {kAttributeLatitude, kAttributeLongitude}) {
      const auto left = a.numberForKey(attribute);
      const auto right = b.numberForKey(attribute);
      if (!left || !right || !(std::fabs(*left - *right) < kSamePlace)) return false;
    }
    if (a.membersForKey(kRelationshipImages).size() !=
        b.membersForKey(kRelationshipImages).size()) {
      return false;
    }
  }
  return std::all_of(sameValues.begin(), sameValues.end(), [&](const char* attribute) {
    const AttributeValue& left = a.valueForKey(attribute);
    return !std::holds_alternative<std::monostate>(left) && left == b.valueForKey(attribute);
  });
}

const std::vector<EqualityRule>& equalityRules() {
  static const std::vector<EqualityRule> rules{
      {kEntityPlanning, {kAttributeDate, kAttributeName}, true},
      {kEntityCustomPoi, {kAttributeName}, true},
      {kEntityCustomCamera,
       {kAttributeModel, kAttributeSensorWidth, kAttributeSensorHeight, kAttributeMegapixels},
       false}};
  return rules;
}

Database::Objects objectsWithEarlierEqual(const Database::Objects& objects,
                                          const EqualityRule& rule) {
  std::map<Key, Indexes> groups;
  for (std::size_t i = 0; i < objects.size(); ++i) {
    if (auto key = KeyOf(*objects[i], rule)) groups[std::move(*key)].push_back(i);
  }
  std::vector<bool> isDuplicate(objects.size(), false);
  for (const auto& [key, group] : groups) {
    if (group.size() == 1) continue;
    if (rule.comparesPlaceAndImages) {
      MarkSamePlaces(objects, group, rule, isDuplicate);
    } else {
      for (std::size_t i = 1; i < group.size(); ++i) isDuplicate[group[i]] = true;
    }
  }
  Database::Objects duplicates;
  for (std::size_t i = 0; i < objects.size(); ++i) {
    if (isDuplicate[i]) duplicates.push_back(objects[i]);
  }
  return duplicates;
}

}  // namespace lumenquest::platform
