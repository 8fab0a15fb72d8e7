#pragma once

#include <optional>
#include <string>

#include "platform/core_location.h"

namespace lumenquest::widgets {

/// A place as a configuration stores it.
struct IntentPlacemark {
  platform::CLLocation location;
  std::string name;
  std::optional<platform::PostalAddress> postalAddress;

  bool operator==(const IntentPlacemark&) const = default;

  /// The entry that stands for wherever the device is, named in the user's language. Its
  /// coordinate, (90, 180), is no place that anybody would choose otherwise.
  static IntentPlacemark myLocation();
  /// Whether the place asks for the device's location. Told by the coordinate alone: the name is in
  /// the language of the day on which it was stored.
  bool isMyLocation() const;
};

}  // namespace lumenquest::widgets
