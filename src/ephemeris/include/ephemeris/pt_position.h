#pragma once

namespace ephemeris {

/// The observer. Set the first four fields, then call CalcObserverCoords() for the rest.
class PtPosition {
 public:
  PtPosition();

  /// Geodetic latitude, degrees, north positive.
  double latitude = 0.0;
  /// Longitude, degrees, east positive.
  double longitude = 0.0;
  /// Height above the reference ellipsoid, metres.
  double height = 0.0;
  /// Height of the eye above the horizon, metres; makes the horizon dip.
  double horizonHeight = 0.0;

  /// Distance from the Earth's centre, equatorial Earth radii (derived).
  double rho = 0.0;
  /// rho·cos φ′ and rho·sin φ′, φ′ being the geocentric latitude (derived).
  double rhoCosPhi = 0.0;
  double rhoSinPhi = 0.0;

  /// Works out the derived fields from latitude and height.
  /// Source: Meeus, Astronomical Algorithms, chapter 11.
  void CalcObserverCoords();
};

}  // namespace ephemeris
