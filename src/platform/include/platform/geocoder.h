#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/core_location.h"

namespace lumenquest::platform {

/// Finds the place of a coordinate and the coordinates of a place.
class Geocoder {
 public:
  virtual ~Geocoder() = default;

  /// The placemarks of a location, the best first; none far from anything known.
  virtual std::vector<CLPlacemark> reverseGeocodeLocation(const CLLocation& location) = 0;

  /// The placemarks that a text as people type it may mean, best known first, at most ten.
  virtual std::vector<CLPlacemark> geocodeAddressString(const std::string& address) = 0;
};

}  // namespace lumenquest::platform
