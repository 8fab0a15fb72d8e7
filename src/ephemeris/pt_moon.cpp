#include "ephemeris/pt_moon.h"

#include <cmath>

#include "ephemeris/constants.h"
#include "ephemeris/pt_brown_lunar_perturbation.h"
#include "ephemeris/pt_math.h"

namespace ephemeris {

namespace {

constexpr double kKmPerAu = 149597870.0;

/// Distance at which the horizontal parallax is 3422.7″, km.
constexpr double kMeanDistance = 384388.55145308975;

/// Ratio of the Moon's radius to the Earth's.
constexpr double kMoonRadius = 0.2724933628738298;

}  // namespace

Vector3D PtMoon::GetEclipticPosition(double T, bool highPrecision) {
  if (!highPrecision) return GetEclipticPositionLowPrecision(T);
  PtBrownLunarPerturbation series;
  series.Init(T);
  series.Calculate();
  return Vector3D(PtPolar(series.lambda(), series.beta(), series.dist()));
}

Vector3D PtMoon::GetEclipticPositionLowPrecision(double T) {
  const double L0 = PtMath::Frac(0.606433 + 1336.855225 * T);
  const double l = kTwoPi * PtMath::Frac(0.374897 + 1325.55241 * T);
  const double ls = kTwoPi * PtMath::Frac(0.993133 + 99.997361 * T);
  const double D = kTwoPi * PtMath::Frac(0.827361 + 1236.853086 * T);
  const double F = kTwoPi * PtMath::Frac(0.259086 + 1342.227825 * T);

  const double dL =
      22640.0 * std::sin(l) - 4586.0 * std::sin(l - 2.0 * D) + 2370.0 * std::sin(2.0 * D) +
      769.0 * std::sin(2.0 * l) - 668.0 * std::sin(ls) - 412.0 * std::sin(2.0 * F) -
      212.0 * std::sin(2.0 * l - 2.0 * D) - 206.0 * std::sin(l + ls - 2.0 * D) +
      192.0 * std::sin(l + 2.0 * D) - 165.0 * std::sin(ls - 2.0 * D) - 125.0 * std::sin(D) -
      110.0 * std::sin(l + ls) + 148.0 * std::sin(l - ls) - 55.0 * std::sin(2.0 * F - 2.0 * D);
  const double S =
      F + (dL + 412.0 * std::sin(2.0 * F) + 541.0 * std::sin(ls)) / kArcsecondsPerRadian;
  const double h = F - 2.0 * D;
  const double N = -526.0 * std::sin(h) + 44.0 * std::sin(l + h) - 31.0 * std::sin(h - l) -
                   23.0 * std::sin(ls + h) + 11.0 * std::sin(h - ls) -
                   25.0 * std::sin(F - 2.0 * l) + 21.0 * std::sin(F - l);

  const double lambda = kTwoPi * PtMath::Frac(L0 + dL / kArcsecondsPerRevolution);
  const double beta = (18520.0 * std::sin(S) + N) / kArcsecondsPerRadian;
  return Vector3D(PtPolar(lambda, beta, kMeanDistance));
}

double PtMoon::CalculateSinPi(double distanceKm) { return 1.0 / (distanceKm / kEarthRadiusKm); }

double PtMoon::CalculateSemidiameterAtUnitDistance(double sinPi, double) {
  return std::asin(kMoonRadius * sinPi) * kRadiansToDegrees;
}

void PtMoon::CalculatePhase(Vector3D* moonEcliptic, Vector3D* moonEquatorial, Vector3D* sunEcliptic,
                            Vector3D* sunEquatorial, double moonHourAngle, MoonPhase* result) {
  const double lambda = (*moonEcliptic)[pol_index::phi];
  const double beta = (*moonEcliptic)[pol_index::theta];
  const double moonDistance = (*moonEcliptic)[pol_index::r];
  const double moonDeclination = (*moonEquatorial)[pol_index::theta];
  const double moonRightAscension = (*moonEquatorial)[pol_index::phi];
  const double sunLongitude = (*sunEcliptic)[pol_index::phi];
  const double sunDistance = (*sunEcliptic)[pol_index::r] * kKmPerAu;
  const double sunDeclination = (*sunEquatorial)[pol_index::theta];
  const double sunRightAscension = (*sunEquatorial)[pol_index::phi];

  const double cosElongation = std::cos(beta) * std::cos(lambda - sunLongitude);
  const double elongation = std::acos(cosElongation);
  const double phaseAngle =
      std::atan2(sunDistance * std::sin(elongation), moonDistance - sunDistance * cosElongation);
  result->illumination = (1.0 + std::cos(phaseAngle)) / 2.0;
  result->phaseAngle = std::fabs(phaseAngle) * kRadiansToDegrees;

  const double latitude = observer_.latitude * kDegreesToRadians;
  const double parallacticAngle =
      (moonHourAngle == 0.0 && latitude == 0.0)
          ? 0.0
          : std::atan2(std::sin(moonHourAngle),
                       std::tan(latitude) * std::cos(moonDeclination) -
                           std::sin(moonDeclination) * std::cos(moonHourAngle));
  result->parallacticAngle = parallacticAngle;

  const double dAlpha = sunRightAscension - moonRightAscension;
  const double positionAngle = PtMath::NormalizeRadians(
      std::atan2(std::cos(sunDeclination) * std::sin(dAlpha),
                 std::sin(sunDeclination) * std::cos(moonDeclination) -
                     std::cos(sunDeclination) * std::sin(moonDeclination) * std::cos(dAlpha)));
  double zenithAngle = positionAngle - parallacticAngle;
  if (zenithAngle < 0.0) zenithAngle += kTwoPi;
  result->brightLimbZenithAngle = zenithAngle;

  double ahead = lambda - sunLongitude;
  if (ahead < 0.0) ahead += kTwoPi;
  result->waxing = 0.0 <= ahead && ahead <= kPi;

  const bool gibbous = result->illumination >= 0.5;
  if (result->waxing) {
    result->phaseType = gibbous ? MoonPhaseType::WaxingGibbous : MoonPhaseType::WaxingCrescent;
  } else {
    result->phaseType = gibbous ? MoonPhaseType::WaningGibbous : MoonPhaseType::WaningCrescent;
  }
}

}  // namespace ephemeris
