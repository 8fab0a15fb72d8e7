#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/ns_managed_object.h"

namespace lumenquest::platform {

// Names in the model.
inline constexpr const char* kEntityPlanning = "Planning";
inline constexpr const char* kEntityCustomPoi = "CustomPoi";
inline constexpr const char* kEntityCustomCamera = "CustomCamera";
inline constexpr const char* kAttributeUniqueIdentifier = "uniqueIdentifier";
inline constexpr const char* kAttributeName = "name";
inline constexpr const char* kAttributeDate = "date";
inline constexpr const char* kAttributeTimezone = "timezone";
inline constexpr const char* kAttributeLatitude = "latitude";
inline constexpr const char* kAttributeLongitude = "longitude";
inline constexpr const char* kAttributeModel = "model";
inline constexpr const char* kAttributeSensorWidth = "sensorWidth";
inline constexpr const char* kAttributeSensorHeight = "sensorHeight";
inline constexpr const char* kAttributeMegapixels = "megapixels";
inline constexpr const char* kRelationshipImages = "images";

/// One saved plan.
class Planning final : public NSManagedObject {
 public:
  using NSManagedObject::NSManagedObject;

  std::optional<std::string> uniqueIdentifier() const {
    return stringForKey(kAttributeUniqueIdentifier);
  }
  std::optional<std::string> name() const { return stringForKey(kAttributeName); }
  /// The plan's moment.
  std::optional<NSDate> date() const { return dateForKey(kAttributeDate); }
  /// A time-zone identifier.
  std::optional<std::string> timezone() const { return stringForKey(kAttributeTimezone); }
  /// Degrees, north positive.
  std::optional<double> latitude() const { return numberForKey(kAttributeLatitude); }
  /// Degrees, east positive.
  std::optional<double> longitude() const { return numberForKey(kAttributeLongitude); }
  std::size_t numberOfImages() const { return membersForKey(kRelationshipImages).size(); }

  /// A plan without an identifier of its own gets a new UUID.
  void awakeFromInsert() override;
};

}  // namespace lumenquest::platform
