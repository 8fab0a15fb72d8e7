#pragma once

#include <cstdint>

#include "ephemeris/pt_planet.h"

namespace ephemeris {

/// Principal phases (0 to 3, instants) and the spans between them (4 to 7).
enum class MoonPhaseType : std::int32_t {
  NewMoon = 0,
  FirstQuarter = 1,
  FullMoon = 2,
  LastQuarter = 3,
  WaxingCrescent = 4,
  WaxingGibbous = 5,
  WaningGibbous = 6,
  WaningCrescent = 7,
};

/// How the Moon's disc looks at an instant.
struct MoonPhase {
  /// Illuminated fraction of the disc, 0…1.
  double illumination;
  /// Sun–Moon–Earth angle, degrees, 0…180.
  double phaseAngle;
  /// True while the Moon's longitude is 0…180° (inclusive) ahead of the Sun's.
  bool waxing;
  /// Radians.
  double parallacticAngle;
  /// Position angle of the bright limb's middle from the direction of the zenith, radians.
  double brightLimbZenithAngle;
  /// One of the four spans.
  MoonPhaseType phaseType;
};

/// The Moon. Distances are kilometres.
class PtMoon final : public PtPlanet {
 public:
  explicit PtMoon(const PtPosition& observer) : PtPlanet(observer) {}

  /// High precision: Brown's theory (PtBrownLunarPerturbation).
  Vector3D GetEclipticPosition(double T, bool highPrecision) override;

  /// A short series, some arcminutes; the distance is the mean one.
  Vector3D GetEclipticPositionLowPrecision(double T);

  double CalculateSinPi(double distanceKm) override;
  double CalculateSemidiameterAtUnitDistance(double sinPi, double distanceKm) override;

  /// Phase from the positions of both bodies: ecliptic vectors (Moon in km, Sun in AU), equatorial
  /// vectors, and the Moon's hour angle in radians.
  /// Source: Meeus, Astronomical Algorithms, chapters 14 and 48.
  void CalculatePhase(Vector3D* moonEcliptic, Vector3D* moonEquatorial, Vector3D* sunEcliptic,
                      Vector3D* sunEquatorial, double moonHourAngle, MoonPhase* result);
};

}  // namespace ephemeris
