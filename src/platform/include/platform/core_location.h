#pragma once

namespace lumenquest::platform {

/// Degrees, north and east positive.
struct CLLocationCoordinate2D {
  double latitude = 0.0;
  double longitude = 0.0;

  bool operator==(const CLLocationCoordinate2D&) const = default;
};

/// A place.
struct CLLocation {
  CLLocationCoordinate2D coordinate;

  bool operator==(const CLLocation&) const = default;
};

}  // namespace lumenquest::platform
