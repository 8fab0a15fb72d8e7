#pragma once

namespace ephemeris {

/// A direction and a distance: azimuthal angle (longitude, right ascension), elevation angle
/// (latitude, declination) and radius. Angles are radians unless the holder says otherwise.
struct PtPolar {
  PtPolar() = default;
  PtPolar(double phi_, double theta_, double r_) : phi(phi_), theta(theta_), r(r_) {}

  double phi = 0.0;
  double theta = 0.0;
  double r = 0.0;
};

}  // namespace ephemeris
