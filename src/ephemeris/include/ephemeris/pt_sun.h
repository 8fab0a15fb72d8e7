#pragma once

#include "ephemeris/pt_planet.h"

namespace ephemeris {

/// The Sun. Distances are astronomical units.
///
/// Source: Montenbruck and Pfleger, Astronomy on the Personal Computer: Keplerian motion with
/// perturbations by Venus, Mars, Jupiter, Saturn and the Moon, resolved to 0.01″ and 1e-8 AU.
class PtSun final : public PtPlanet {
 public:
  explicit PtSun(const PtPosition& observer) : PtPlanet(observer) {}

  Vector3D GetEclipticPosition(double T, bool highPrecision) override;

  /// Two-term equation of the centre: within 0.01° in longitude, distance nearly constant.
  Vector3D GetEclipticPositionLowPrecision(double T);

  double CalculateSinPi(double distanceAu) override;
  double CalculateSemidiameterAtUnitDistance(double sinPi, double distanceAu) override;
};

}  // namespace ephemeris
