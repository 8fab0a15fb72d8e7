#pragma once

#include <optional>
#include <string>

namespace lumenquest::platform {

/// A time zone by its identifier in the IANA time-zone database. Its rules live behind the
/// services.
struct NSTimeZone {
  std::string name;

  bool operator==(const NSTimeZone&) const = default;

  /// The zone named "GMT".
  static NSTimeZone gmt();
  /// The device's zone.
  static NSTimeZone localTimeZone();
  /// The zone of this identifier, or nothing when the database does not know it.
  static std::optional<NSTimeZone> timeZoneWithName(const std::string& name);
};

}  // namespace lumenquest::platform
