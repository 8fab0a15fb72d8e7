#pragma once

#include "ephemeris/pt_planet.h"

namespace ephemeris {

/// The centre of the Milky Way: a fixed point of the sky, nutated but not precessed.
class PtMilkyWay final : public PtPlanet {
 public:
  explicit PtMilkyWay(const PtPosition& observer) : PtPlanet(observer) {}

  /// The zero vector: the centre has no ecliptic series.
  Vector3D GetEclipticPosition(double T, bool highPrecision) override;
  Vector3D GetEquatorialPosition(double mjd, double deltaT, bool highPrecision) override;
  /// A point at infinity: 0.
  double CalculateSinPi(double distance) override;
  double CalculateSemidiameterAtUnitDistance(double sinPi, double distance) override;

  /// Rise and set of the centre in the 24 h from `mjd0`, and the part of the night in which it is
  /// up. All MJD (UT); the special values of FindEvents() may stand in the night's bounds and in
  /// the results; no visibility is kMjdAlwaysInvisible in both bounds.
  void FindRiseSet(double mjd0, double deltaT, double nightEnd, double nightStart, double* rise,
                   double* set, double* visibleFrom, double* visibleTo);

  void FindVisibleFromTo(double rise, double set, double nightEnd, double nightStart,
                         double* visibleFrom, double* visibleTo);

  /// How the band of the Milky Way stands above the horizon at an instant.
  ///
  /// `centreHorizontal`: direction of the centre, x north, y east, z zenith (apparent elevation).
  /// `bandDirection`: direction along the galactic equator, 90° from the centre.
  /// `tilt`: how far the band leans, radians. `highestAzimuth`: azimuth of its highest point,
  /// radians. `signedTilt`: the tilt, negative when the highest point lies before the band's nearer
  /// foot.
  void CalculateMilkyWayPosition(double mjd, double deltaT, Vector3D* centreHorizontal,
                                 Vector3D* bandDirection, double* tilt, double* highestAzimuth,
                                 double* signedTilt);
};

}  // namespace ephemeris
