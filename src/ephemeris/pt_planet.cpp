#include "ephemeris/pt_planet.h"

#include <algorithm>
#include <cmath>

#include "ephemeris/assertion.h"
#include "ephemeris/constants.h"
#include "ephemeris/pt_date_time.h"
#include "ephemeris/pt_math.h"

namespace ephemeris {

namespace {

/// Degrees per arcminute times the factor of the standard atmosphere.
constexpr double kRefractionFactor = 0.01642596030436377;

/// Sine of the fixed thresholds.
constexpr double kSin4 = 0.0697564737441253;
constexpr double kSin6 = 0.10452846326765347;
constexpr double kSin12 = 0.20791169081775934;
constexpr double kSin18 = 0.3090169943749474;

double CentreToSinH(SearchEvent event) {
  switch (event) {
    case SearchEvent::CivilTwilight:
      return -kSin6;
    case SearchEvent::NauticalTwilight:
      return -kSin12;
    case SearchEvent::AstronomicalTwilight:
      return -kSin18;
    case SearchEvent::GoldenHour:
      return kSin6;
    case SearchEvent::BlueHour:
      return -kSin4;
    case SearchEvent::RiseSet:
      break;
  }
  // The parts by which diagnostics know this fault; they must not move with the source.
  assertionFailed("FindEvents", "pt_planet", 492, "false");
}

/// Mean obliquity of the ecliptic, radians.
double MeanObliquity(double T) {
  return (23.43929111 - T * (46.815 + T * (0.00059 - 0.001813 * T)) / 3600.0) * kDegreesToRadians;
}

}  // namespace

PtPlanet::PtPlanet(const PtPosition& observer)
    : observer_(observer), refractionFactor_(kRefractionFactor) {}

void PtPlanet::Restore(const PositionMemory::Entry& entry) {
  eclipticPosition_ = entry.ecliptic;
  equatorialPosition_ = entry.meanEquatorial;
  obliquity_ = entry.obliquity;
  nutationInLongitude_ = entry.nutationInLongitude;
  nutationInObliquity_ = entry.nutationInObliquity;
}

bool PtPlanet::RecallPosition(const PositionMemory::Key& key, Vector3D* trueEquatorial) {
  const PositionMemory::Entry* entry = memory_.Find(key);
  if (entry == nullptr) return false;
  Restore(*entry);
  *trueEquatorial = entry->trueEquatorial;
  return true;
}

void PtPlanet::RememberPosition(const PositionMemory::Key& key, const Vector3D& trueEquatorial) {
  ++positionsComputed_;
  PositionMemory::Entry entry;
  entry.key = key;
  entry.ecliptic = eclipticPosition_;
  entry.meanEquatorial = equatorialPosition_;
  entry.trueEquatorial = trueEquatorial;
  entry.obliquity = obliquity_;
  entry.nutationInLongitude = nutationInLongitude_;
  entry.nutationInObliquity = nutationInObliquity_;
  memory_.Add(entry);
}

Vector3D PtPlanet::GetEquatorialPosition(double mjd, double deltaT, bool highPrecision) {
  const PositionMemory::Key key{mjd, deltaT, highPrecision};
  Vector3D trueEquatorial;
  if (RecallPosition(key, &trueEquatorial)) return trueEquatorial;

  const double T = PtDateTime::MjdToJulianCenturies(mjd + deltaT);
  eclipticPosition_ = GetEclipticPosition(T, highPrecision);
  equatorialPosition_ = EclipticToEquatorialMatrix(T) * eclipticPosition_;
  trueEquatorial = NutationMatrix(T) * equatorialPosition_;
  RememberPosition(key, trueEquatorial);
  return trueEquatorial;
}

Matrix3D PtPlanet::EclipticToEquatorialMatrix(double T) {
  obliquity_ = MeanObliquity(T);
  return Matrix3D::R_x(-obliquity_);
}

Matrix3D PtPlanet::NutationMatrix(double T) {
  const double ls = kTwoPi * PtMath::Frac(0.993133 + 99.997306 * T);
  const double D = kTwoPi * PtMath::Frac(0.827362 + 1236.853087 * T);
  const double F = kTwoPi * PtMath::Frac(0.259089 + 1342.227826 * T);
  const double N = kTwoPi * PtMath::Frac(0.347346 - 5.372447 * T);

  nutationInLongitude_ =
      (-17.2 * std::sin(N) - 1.319 * std::sin(2.0 * (F - D + N)) - 0.227 * std::sin(2.0 * (F + N)) +
       0.206 * std::sin(2.0 * N) + 0.143 * std::sin(ls)) /
      kArcsecondsPerRadian;
  nutationInObliquity_ = (9.203 * std::cos(N) + 0.574 * std::cos(2.0 * (F - D + N)) +
                          0.098 * std::cos(2.0 * (F + N)) - 0.09 * std::cos(2.0 * N)) /
                         kArcsecondsPerRadian;

  const double obliquity = 0.4090928 - 0.00022696 * T;
  return Matrix3D::R_x(-obliquity - nutationInObliquity_) * Matrix3D::R_z(-nutationInLongitude_) *
         Matrix3D::R_x(obliquity);
}

double PtPlanet::CalculateApparentSiderealTime(double mjd) {
  return PtDateTime::SiderealTimeAtGreenwich(mjd) +
         nutationInLongitude_ * std::cos(obliquity_ + nutationInObliquity_) * kRadiansToHours;
}

void PtPlanet::EquatorialToTopocentricCoordinates(double gastHours, Vector3D* equatorial,
                                                  double* topoHourAngle, double* topoDeclination,
                                                  double* topoSemidiameter) {
  const double declination = (*equatorial)[pol_index::theta];
  const double rightAscension = (*equatorial)[pol_index::phi];
  const double distance = (*equatorial)[pol_index::r];

  hourAngle_ = PtMath::NormalizeRadians(observer_.longitude * kDegreesToRadians +
                                        gastHours * kHoursToRadians - rightAscension);
  const double sinPi = CalculateSinPi(distance);

  const double cosDeclination = std::cos(declination);
  const double x = cosDeclination * std::cos(hourAngle_) - observer_.rhoCosPhi * sinPi;
  const double y = cosDeclination * std::sin(hourAngle_);
  const double z = std::sin(declination) - observer_.rhoSinPhi * sinPi;
  const double d = std::sqrt(x * x + y * y + z * z);

  *topoHourAngle = std::atan2(y, x);
  *topoDeclination = std::asin(z / d);
  *topoSemidiameter = CalculateSemidiameterAtUnitDistance(sinPi, distance) / d;
}

PtPolar PtPlanet::TopocentricToHorizontalCoordinates(double hourAngle, double declination,
                                                     double distance) {
  const double latitude = observer_.latitude * kDegreesToRadians;
  const double sinLat = std::sin(latitude);
  const double cosLat = std::cos(latitude);
  const double cosHourAngle = std::cos(hourAngle);

  const double azimuth =
      std::atan2(std::sin(hourAngle), cosHourAngle * sinLat - std::tan(declination) * cosLat);
  const double elevation =
      std::asin(sinLat * std::sin(declination) + cosLat * std::cos(declination) * cosHourAngle);
  return PtPolar(azimuth * kRadiansToDegrees + 180.0, elevation * kRadiansToDegrees, distance);
}

void PtPlanet::CalculateEclipticEquatorialAndHorizontalPositions(double mjd, double deltaT,
                                                                 bool highPrecision) {
  equatorialPosition_ = GetEquatorialPosition(mjd, deltaT, highPrecision);
  const double gast = CalculateApparentSiderealTime(mjd);

  double hourAngle = 0.0;
  double declination = 0.0;
  EquatorialToTopocentricCoordinates(gast, &equatorialPosition_, &hourAngle, &declination,
                                     &semidiameter_);
  horizontalPosition_ =
      TopocentricToHorizontalCoordinates(hourAngle, declination, equatorialPosition_[pol_index::r]);
  horizontalPosition_.theta =
      std::min(90.0, horizontalPosition_.theta + RefractionTrue(horizontalPosition_.theta));
}

// The coefficients and bounds of the refraction are single-precision values, widened: rise, set and
// elevation depend on them to the last bit.

double PtPlanet::RefractionApparent(double apparentElevation) {
  const double h = apparentElevation;
  const double k = refractionFactor_;
  if (h >= 0.0) {
    return k * (1.0 / std::tan((h + 7.31f / (h + 4.4f)) * kDegreesToRadians) + 0.0013515f);
  }
  if (h > -3.21783f) {
    return k * (34.341f +
                h * (-11.308f +
                     h * (8.052f + h * (13.599f + h * (4.9746f + h * (0.7662f + 0.0444f * h))))));
  }
  if (h > -3.31783f) {
    return (h + 3.31783f) * (k * 19.301155f) / 0.1f;
  }
  return 0.0;
}

double PtPlanet::RefractionTrue(double trueElevation) {
  const double h = trueElevation;
  const double k = refractionFactor_;
  if (h > -3.54f) {
    return k * (1.02f / std::tan((h + 10.3f / (h + 5.11f)) * kDegreesToRadians) + 0.0019279f);
  }
  if (h > -3.64f) {
    // Refraction at the ramp's upper end, kept in single precision like the coefficients.
    const auto q = static_cast<float>(k * 19.332295304324145);
    return (h + 3.64f) * static_cast<double>(q) / 0.1f;
  }
  return 0.0;
}

double PtPlanet::TrueToApparentElevation(double trueElevation, double, double) {
  return std::min(90.0, trueElevation + RefractionTrue(trueElevation));
}

double PtPlanet::ApparentToTrueElevation(double apparentElevation, double, double horizonHeight) {
  const double h = apparentElevation;
  const double refraction = RefractionApparent(h);
  if (h == 0.0) {
    // Dip of 2.12′ per square-root metre.
    const double dip = horizonHeight > 0.0 ? 0.035333333333333335 * std::sqrt(horizonHeight) : 0.0;
    return h - dip - refraction;
  }
  // Below the dipped horizon (1.75′ per square-root metre) there is no refraction to take off.
  const bool belowHorizon = h < -0.029166666666666667 * std::sqrt(horizonHeight);
  return belowHorizon ? h : h - refraction;
}

double PtPlanet::GetGeoElevation(double sinPi, double apparentElevation) {
  const double elevation =
      ApparentToTrueElevation(apparentElevation, observer_.height, observer_.horizonHeight);
  if (!(sinPi > 0.0)) return elevation;
  const double parallax =
      std::asin(std::cos(elevation * kDegreesToRadians) * observer_.rho * sinPi);
  return elevation + parallax * kRadiansToDegrees;
}

double PtPlanet::GetSinH(double altitude, AltitudeType type, double distance) {
  const double sinPi = CalculateSinPi(distance);
  double h = GetGeoElevation(sinPi, altitude);
  if (type == AltitudeType::UpperLimb) {
    const double semidiameter = CalculateSemidiameterAtUnitDistance(sinPi, distance);
    h = h - (1.0 + sinPi * std::sin(h * kDegreesToRadians)) * semidiameter;
  }
  return std::sin(h * kDegreesToRadians);
}

PositionMemory::Sample PtPlanet::SampleAt(double mjd, double deltaT) {
  const PositionMemory::Key key{mjd, deltaT, true};
  PositionMemory::Entry* entry = memory_.Find(key);
  if (entry != nullptr && entry->sample) {
    Restore(*entry);
    return *entry->sample;
  }

  Vector3D position = GetEquatorialPosition(mjd, deltaT, true);
  const double declination = position[pol_index::theta];
  PositionMemory::Sample sample;
  sample.sinDeclination = std::sin(declination);
  sample.cosDeclination = std::cos(declination);
  sample.rightAscension = position[pol_index::phi];
  sample.siderealAngle = CalculateApparentSiderealTime(mjd) * kHoursToRadians;
  entry = memory_.Find(key);
  if (entry != nullptr) entry->sample = sample;
  return sample;
}

double PtPlanet::SinAlt(double mjd0, double deltaT, double hour, double, double cosLat,
                        double sinLat) {
  const PositionMemory::Sample body = SampleAt(mjd0 + hour / 24.0, deltaT);
  const double tau = PtMath::NormalizeRadians(
      body.siderealAngle + observer_.longitude * kDegreesToRadians - body.rightAscension);
  return sinLat * body.sinDeclination + cosLat * body.cosDeclination * std::cos(tau);
}

void PtPlanet::FindEvents(SearchEvent event, double mjd0, double deltaT, double* rise,
                          double* set) {
  double sinH0 = 0.0;
  if (event == SearchEvent::RiseSet) {
    const double distance = GetEquatorialPosition(mjd0, deltaT, true)[pol_index::r];
    sinH0 = GetSinH(0.0, AltitudeType::UpperLimb, distance);
  } else {
    sinH0 = CentreToSinH(event);
  }

  const double latitude = observer_.latitude * kDegreesToRadians;
  const double sinLat = std::sin(latitude);
  const double cosLat = std::cos(latitude);
  const auto heightAt = [&](double hour) {
    return SinAlt(mjd0, deltaT, hour, 0.0, cosLat, sinLat) - sinH0;
  };

  const double yStart = heightAt(0.0);
  double yMinus = yStart;
  double riseHour = 0.0;
  double setHour = 0.0;
  bool riseFound = false;
  bool setFound = false;
  for (double hour = 1.0; hour < 25.0 && !(riseFound && setFound); hour += 2.0) {
    const double y0 = heightAt(hour);
    const double yPlus = heightAt(hour + 1.0);
    double xe = 0.0;
    double ye = 0.0;
    double root1 = 0.0;
    double root2 = 0.0;
    int nRoot = 0;
    PtMath::QuadraticInterpolation(yMinus, y0, yPlus, xe, ye, root1, root2, nRoot);
    if (nRoot == 1) {
      if (yMinus < 0.0) {
        riseHour = hour + root1;
        riseFound = true;
      } else {
        setHour = hour + root1;
        setFound = true;
      }
    } else if (nRoot == 2) {
      const bool dipsBelow = ye < 0.0;
      riseHour = hour + (dipsBelow ? root2 : root1);
      setHour = hour + (dipsBelow ? root1 : root2);
      riseFound = true;
      setFound = true;
    }
    yMinus = yPlus;
  }

  if (riseFound || setFound) {
    *rise = riseFound ? mjd0 + riseHour / 24.0 : kMjdNoRiseOrSet;
    *set = setFound ? mjd0 + setHour / 24.0 : kMjdNoRiseOrSet;
  } else {
    *rise = *set = yStart > 0.0 ? kMjdCircumpolar : kMjdAlwaysInvisible;
  }
}

}  // namespace ephemeris
