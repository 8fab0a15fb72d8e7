#include "ephemeris/pt_milky_way.h"

#include <cmath>

#include "ephemeris/constants.h"
#include "ephemeris/pt_date_time.h"
#include "ephemeris/pt_math.h"

namespace ephemeris {

namespace {

/// Galactic centre: right ascension 266.40°, declination −28.94°.
constexpr double kCentreRightAscension = 4.649557127312894;
constexpr double kCentreDeclination = -0.505098285527159;
/// North galactic pole: right ascension 192.85°, declination +27.13°.
constexpr double kPoleRightAscension = 3.3658674633437284;
constexpr double kPoleDeclination = 0.47350782606606157;

constexpr double kHalfPi = 1.5707963267948966;

Vector3D CentreDirection() {
  return Vector3D(PtPolar(kCentreRightAscension, kCentreDeclination, 1.0));
}

Vector3D PoleDirection() { return Vector3D(PtPolar(kPoleRightAscension, kPoleDeclination, 1.0)); }

/// The band of the Milky Way as a great circle of the horizontal frame, in single precision: the
/// band has no sharper place, and the signs that depend on it must not change.
class Band {
 public:
  Band(const Vector3D& centre, const Vector3D& direction) : centre_(centre), along_(direction) {}

  double Height(float t) const { return Component(index::z, t); }

  /// Azimuth of the point at `t`, radians in 0…2π.
  float Azimuth(float t) const {
    return Normalize(std::atan2(static_cast<float>(Component(index::y, t)),
                                static_cast<float>(Component(index::x, t))));
  }

  /// Reduces an azimuth to 0…2π.
  static float Normalize(float azimuth) {
    const auto wide = static_cast<double>(azimuth);
    if (wide > kTwoPi) return static_cast<float>(std::fmod(wide, kTwoPi));
    if (wide < 0.0) return static_cast<float>(std::fmod(wide, kTwoPi) + kTwoPi);
    return azimuth;
  }

  /// `t` and an angle further on.
  static float Further(float t, double by) {
    return static_cast<float>(static_cast<double>(t) + by);
  }

 private:
  double Component(index component, float t) const {
    return static_cast<double>(std::cos(t)) * centre_[component] +
           static_cast<double>(std::sin(t)) * along_[component];
  }

  const Vector3D& centre_;
  const Vector3D& along_;
};

}  // namespace

Vector3D PtMilkyWay::GetEclipticPosition(double, bool) { return Vector3D(); }

Vector3D PtMilkyWay::GetEquatorialPosition(double mjd, double deltaT, bool highPrecision) {
  const PositionMemory::Key key{mjd, deltaT, highPrecision};
  Vector3D trueEquatorial;
  if (RecallPosition(key, &trueEquatorial)) return trueEquatorial;

  const double T = PtDateTime::MjdToJulianCenturies(mjd + deltaT);
  EclipticToEquatorialMatrix(T);  // for the obliquity that the sidereal time reads
  equatorialPosition_ = CentreDirection();
  trueEquatorial = NutationMatrix(T) * equatorialPosition_;
  RememberPosition(key, trueEquatorial);
  return trueEquatorial;
}

double PtMilkyWay::CalculateSinPi(double) { return 0.0; }

double PtMilkyWay::CalculateSemidiameterAtUnitDistance(double, double) { return 0.0; }

void PtMilkyWay::FindRiseSet(double mjd0, double deltaT, double nightEnd, double nightStart,
                             double* rise, double* set, double* visibleFrom, double* visibleTo) {
  FindEvents(SearchEvent::RiseSet, mjd0, deltaT, rise, set);
  if (*rise > nightEnd && *rise < *set) {
    *rise = kMjdAlwaysInvisible;
    *set = kMjdAlwaysInvisible;
  }
  if (*set < *rise) *rise = mjd0;
  FindVisibleFromTo(*rise, *set, nightEnd, nightStart, visibleFrom, visibleTo);
}

void PtMilkyWay::FindVisibleFromTo(double rise, double set, double nightEnd, double nightStart,
                                   double* visibleFrom, double* visibleTo) {
  const auto never = [&] { *visibleFrom = *visibleTo = kMjdAlwaysInvisible; };

  const bool noNight =
      nightStart == kMjdNoRiseOrSet || nightStart == kMjdCircumpolar || nightEnd == kMjdCircumpolar;
  if (noNight || rise == kMjdAlwaysInvisible) {
    never();
    return;
  }
  if (rise == kMjdCircumpolar) {
    *visibleFrom = nightStart;
    *visibleTo = nightEnd;
    return;
  }
  *visibleFrom = rise;
  *visibleTo = set;
  if (set < rise) {
    *visibleFrom = nightStart;
  } else if (rise > nightEnd) {
    never();
    return;
  }
  if (set > nightEnd) *visibleTo = nightEnd;
}

void PtMilkyWay::CalculateMilkyWayPosition(double mjd, double deltaT, Vector3D* centreHorizontal,
                                           Vector3D* bandDirection, double* tilt,
                                           double* highestAzimuth, double* signedTilt) {
  const double T = PtDateTime::MjdToJulianCenturies(mjd + deltaT);
  EclipticToEquatorialMatrix(T);
  const Matrix3D nutation = NutationMatrix(T);
  Vector3D centre = nutation * CentreDirection();
  Vector3D pole = nutation * PoleDirection();
  const double gast = CalculateApparentSiderealTime(mjd);

  const auto horizontalPlace = [&](Vector3D& equatorial) {
    double hourAngle = 0.0;
    double declination = 0.0;
    double semidiameter = 0.0;
    EquatorialToTopocentricCoordinates(gast, &equatorial, &hourAngle, &declination, &semidiameter);
    PtPolar place = TopocentricToHorizontalCoordinates(hourAngle, declination, 1.0);
    place.theta = TrueToApparentElevation(place.theta, observer_.height, observer_.horizonHeight);
    return place;
  };
  const auto direction = [](const PtPolar& place) {
    return Vector3D(PtPolar(place.phi * kDegreesToRadians, place.theta * kDegreesToRadians, 1.0));
  };

  const PtPolar centrePlace = horizontalPlace(centre);
  horizontalPosition_.phi = centrePlace.phi;
  horizontalPosition_.theta = centrePlace.theta;
  *centreHorizontal = direction(centrePlace);
  Vector3D poleHorizontal = direction(horizontalPlace(pole));
  *bandDirection = Cross(*centreHorizontal, poleHorizontal);

  const Band band(*centreHorizontal, *bandDirection);
  // Where the band crosses the horizon, and its extremum of height a quarter turn further.
  const float t0 = std::atan2(static_cast<float>(-(*centreHorizontal)[index::z]),
                              static_cast<float>((*bandDirection)[index::z]));
  float t = Band::Further(t0, kHalfPi);
  if (band.Height(t) < 0.0) t = Band::Further(t, kPi);
  const float highest = band.Azimuth(t);
  *highestAzimuth = static_cast<double>(highest);

  double lean = std::acos(poleHorizontal[index::z] / poleHorizontal[pol_index::r]) - kHalfPi;
  if (lean > kHalfPi) {
    lean = std::fmod(lean, kHalfPi);
  } else if (lean < 0.0) {
    lean = std::fabs(std::fmod(lean, kHalfPi));
  }
  *tilt = lean;
  *signedTilt = lean;

  // The band's foot nearer to the centre decides the side to which it leans.
  const float foot1 = band.Azimuth(t0);
  const float foot2 = Band::Normalize(Band::Further(foot1, kPi));
  const double foot1Degrees = static_cast<double>(foot1) * kRadiansToDegrees;
  const double foot2Degrees = static_cast<double>(foot2) * kRadiansToDegrees;
  const bool firstIsNearer = std::fabs(PtMath::AngleDifference(centrePlace.phi, foot1Degrees)) <
                             std::fabs(PtMath::AngleDifference(centrePlace.phi, foot2Degrees));
  const double foot = firstIsNearer ? foot1Degrees : foot2Degrees;
  if (PtMath::AngleDifference(static_cast<double>(highest) * kRadiansToDegrees, foot) < 0.0) {
    *signedTilt = -*signedTilt;
  }
}

}  // namespace ephemeris
