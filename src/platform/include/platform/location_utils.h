#pragma once

#include <string>

#include "platform/core_location.h"

namespace lumenquest::platform {

/// How coordinates are written; the main application lets the user choose.
enum CoordinateSystem : int {
  kCoordinateSystemDecimalDegrees = 0,
  kCoordinateSystemDecimalMinutes = 1,
  kCoordinateSystemSeconds = 2,
};

/// Geodesy and texts of places. Coordinates and bearings are degrees, bearings clockwise from
/// north.
class LocationUtils {
 public:
  /// Kilometres on a sphere of the Earth's equatorial radius.
  static double greatCircleDistanceWithSource(CLLocationCoordinate2D source,
                                              CLLocationCoordinate2D destination);

  /// The position at a range (metres) and bearing, on the WGS-84 ellipsoid; the invalid coordinate
  /// when the iteration does not converge.
  /// Source: Vincenty, Survey Review 23 (1975), direct formula.
  static CLLocationCoordinate2D calculateDerivedPositionFromSource(CLLocationCoordinate2D source,
                                                                   float range, float andBearing);

  /// Bearing at the start of the great circle, in [0, 360).
  static float initialBearingFrom(CLLocationCoordinate2D from,
                                  CLLocationCoordinate2D toDestination);

  /// Kilometres to the horizon from a height in metres, with refraction.
  static float distanceToHorizon(float observerHeight);

  /// Localised abbreviation of the nearest of eight compass points.
  static std::string cardinalNameForBearing(double bearing);

  /// The coordinate in the user's notation.
  static std::string latLonStringWithCoordinate(CLLocationCoordinate2D coordinate);
  /// In a notation of CoordinateSystem; any other value counts as degrees, minutes and seconds.
  static std::string latLonStringWithCoordinate(CLLocationCoordinate2D coordinate,
                                                int usingCoordSystem);
  /// Signed decimal degrees with a point, for machines. Held in single precision, as its readers
  /// always had it.
  static std::string decimalLatLonStringWithCoordinate(CLLocationCoordinate2D coordinate);
};

}  // namespace lumenquest::platform
