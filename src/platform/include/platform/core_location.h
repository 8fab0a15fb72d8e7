#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/ns_date.h"
#include "platform/ns_time_zone.h"

namespace lumenquest::platform {

/// Degrees, north and east positive.
struct CLLocationCoordinate2D {
  double latitude = 0.0;
  double longitude = 0.0;

  bool operator==(const CLLocationCoordinate2D&) const = default;

  /// Whether both are within their ranges; NaN is not.
  bool isValid() const;
};

/// Stands where there is no coordinate.
inline constexpr CLLocationCoordinate2D kCLLocationCoordinate2DInvalid{-180.0, -180.0};

/// A place, and when a device was there.
struct CLLocation {
  CLLocationCoordinate2D coordinate;
  /// When it was measured; absent where nobody measured it, as for a place from a list.
  std::optional<NSDate> timestamp{};

  /// Metres to another place, on the WGS-84 ellipsoid.
  double distanceFromLocation(const CLLocation& other) const;

  bool operator==(const CLLocation&) const = default;
};

/// A round region of the map.
struct CLCircularRegion {
  CLLocationCoordinate2D center;
  /// Metres.
  double radius = 0.0;
};

/// The lines of an address, as far as they are known.
struct PostalAddress {
  std::optional<std::string> locality;
  std::optional<std::string> administrativeArea;
  std::optional<std::string> country;

  bool operator==(const PostalAddress&) const = default;
};

/// What a geocoder knows of a place. Every part may be absent.
class CLPlacemark {
 public:
  std::optional<CLLocation> location;
  std::optional<std::string> name;
  std::optional<std::string> thoroughfare;
  std::optional<std::string> subThoroughfare;
  std::optional<std::string> locality;
  std::optional<std::string> subAdministrativeArea;
  std::optional<std::string> administrativeArea;
  std::optional<std::string> country;
  std::optional<std::string> ocean;
  std::vector<std::string> areasOfInterest;
  /// Present when the region is a round one.
  std::optional<CLCircularRegion> region;
  std::optional<NSTimeZone> timeZone;
  std::optional<PostalAddress> postalAddress;

  /// The place as its people call it: street, point of interest, name, town or area.
  std::optional<std::string> title() const;
  /// Where that is.
  std::optional<std::string> subtitle() const;
  /// Town and country, for a list of search results.
  std::optional<std::string> shortTitle() const;
  /// The town, or the next best that is known.
  std::optional<std::string> cityTitle() const;

 private:
  /// The first area of interest, where the region is small enough for the place to be it.
  const std::string* pointOfInterest() const;
};

}  // namespace lumenquest::platform
