#include "platform/location_utils.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "platform/formatters.h"
#include "platform/localized_strings.h"
#include "platform/ns_user_defaults.h"

namespace lumenquest::platform {

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kDegreesToRadians = 0.017453292519943295;
constexpr double kRadiansToDegrees = 57.29577951308232;

/// Equatorial radius, km.
constexpr double kSphereRadius = 6378.137;
/// WGS-84: semi-axes in metres, flattening.
constexpr double kSemiMajorAxis = 6378137.0;
constexpr double kSemiMinorAxis = 6356752.314245;
constexpr double kFlattening = 0.0033528106647474805;
/// 2·(7/6)·6378.137: twice the Earth's radius in km, enlarged for refraction.
constexpr double kHorizonFactor = 14882.319666666666;

constexpr double kConvergence = 1e-12;
constexpr int kMostRounds = 100;

/// A sector of the compass up to its end; intercardinal sectors exclude their ends.
struct Sector {
  double end;
  bool includesEnd;
  const char* key;
};

constexpr std::array<Sector, 8> kSectors{{
    {22.5, true, "cardinal_point_north_abbr"},
    {67.5, false, "cardinal_point_north_east_abbr"},
    {112.5, true, "cardinal_point_east_abbr"},
    {157.5, false, "cardinal_point_south_east_abbr"},
    {202.5, true, "cardinal_point_south_abbr"},
    {247.5, false, "cardinal_point_south_west_abbr"},
    {292.5, true, "cardinal_point_west_abbr"},
    {337.5, false, "cardinal_point_north_west_abbr"},
}};

const char* CardinalKey(double bearing) {
  if (bearing >= 337.5) return kSectors.front().key;
  for (const Sector& sector : kSectors) {
    if (bearing < sector.end || (sector.includesEnd && bearing == sector.end)) return sector.key;
  }
  return kSectors.back().key;  // no number
}

/// Whole degrees, whole minutes and seconds of an angle.
struct Sexagesimal {
  explicit Sexagesimal(double angle)
      : degrees(std::floor(angle)),
        decimalMinutes((angle - degrees) * 60.0),
        minutes(std::floor(decimalMinutes)),
        seconds(((angle - degrees) - minutes / 60.0) * 3600.0) {}

  double degrees;
  double decimalMinutes;
  double minutes;
  double seconds;
};

}  // namespace

double LocationUtils::greatCircleDistanceWithSource(CLLocationCoordinate2D source,
                                                    CLLocationCoordinate2D destination) {
  const double phi1 = source.latitude * kDegreesToRadians;
  const double phi2 = destination.latitude * kDegreesToRadians;
  const double dLambda = (source.longitude - destination.longitude) * kDegreesToRadians;
  const double cosine =
      std::sin(phi1) * std::sin(phi2) + std::cos(phi1) * std::cos(phi2) * std::cos(dLambda);
  // Rounding can lead beyond 1 where both are the same point.
  return std::acos(std::clamp(cosine, -1.0, 1.0)) * kSphereRadius;
}

CLLocationCoordinate2D LocationUtils::calculateDerivedPositionFromSource(
    CLLocationCoordinate2D source, float range, float andBearing) {
  const double phi1 = source.latitude * kDegreesToRadians;
  const double lambda1 = source.longitude * kDegreesToRadians;
  const double alpha1 = static_cast<double>(andBearing) * kDegreesToRadians;
  const double sinAlpha1 = std::sin(alpha1);
  const double cosAlpha1 = std::cos(alpha1);

  const double tanU1 = (1.0 - kFlattening) * std::tan(phi1);
  const double cosU1 = 1.0 / std::sqrt(1.0 + tanU1 * tanU1);
  const double sinU1 = tanU1 * cosU1;
  const double sigma1 = std::atan2(tanU1, cosAlpha1);
  const double sinAlpha = cosU1 * sinAlpha1;
  const double cosSqAlpha = 1.0 - sinAlpha * sinAlpha;
  const double uSq = cosSqAlpha *
                     (kSemiMajorAxis * kSemiMajorAxis - kSemiMinorAxis * kSemiMinorAxis) /
                     (kSemiMinorAxis * kSemiMinorAxis);
  const double A = 1.0 + uSq / 16384.0 * (4096.0 + uSq * (-768.0 + uSq * (320.0 - 175.0 * uSq)));
  const double B = uSq / 1024.0 * (256.0 + uSq * (-128.0 + uSq * (74.0 - 47.0 * uSq)));

  const double start = static_cast<double>(range) / (kSemiMinorAxis * A);
  double sigma = start;
  double previous = 0.0;
  double cos2SigmaM = 0.0;
  int round = 0;
  do {
    if (round++ == kMostRounds) return kCLLocationCoordinate2DInvalid;
    cos2SigmaM = std::cos(2.0 * sigma1 + sigma);
    const double sinSigma = std::sin(sigma);
    const double cosSigma = std::cos(sigma);
    const double deltaSigma =
        B * sinSigma *
        (cos2SigmaM + B / 4.0 *
                          (cosSigma * (-1.0 + 2.0 * cos2SigmaM * cos2SigmaM) -
                           B / 6.0 * cos2SigmaM * (-3.0 + 4.0 * sinSigma * sinSigma) *
                               (-3.0 + 4.0 * cos2SigmaM * cos2SigmaM)));
    previous = sigma;
    sigma = start + deltaSigma;
  } while (!(std::fabs(sigma - previous) <= kConvergence));

  const double sinSigma = std::sin(sigma);
  const double cosSigma = std::cos(sigma);
  const double x = sinU1 * sinSigma - cosU1 * cosSigma * cosAlpha1;
  const double phi2 = std::atan2(sinU1 * cosSigma + cosU1 * sinSigma * cosAlpha1,
                                 (1.0 - kFlattening) * std::sqrt(sinAlpha * sinAlpha + x * x));
  const double lambda =
      std::atan2(sinSigma * sinAlpha1, cosU1 * cosSigma - sinU1 * sinSigma * cosAlpha1);
  const double C = kFlattening / 16.0 * cosSqAlpha * (4.0 + kFlattening * (4.0 - 3.0 * cosSqAlpha));
  const double L =
      lambda -
      (1.0 - C) * kFlattening * sinAlpha *
          (sigma +
           C * sinSigma * (cos2SigmaM + C * cosSigma * (-1.0 + 2.0 * cos2SigmaM * cos2SigmaM)));
  const double lambda2 = std::fmod(lambda1 + L + 3.0 * kPi, 2.0 * kPi) - kPi;
  return {phi2 * kRadiansToDegrees, lambda2 * kRadiansToDegrees};
}

float LocationUtils::initialBearingFrom(CLLocationCoordinate2D from,
                                        CLLocationCoordinate2D toDestination) {
  const double phi1 = from.latitude * kDegreesToRadians;
  const double phi2 = toDestination.latitude * kDegreesToRadians;
  const double dLambda = (toDestination.longitude - from.longitude) * kDegreesToRadians;
  // The angle is a single-precision number; so is the bearing, which must not round up to 360 a
  // hair below north.
  const auto theta = static_cast<float>(std::atan2(
      std::sin(dLambda) * std::cos(phi2),
      std::cos(phi1) * std::sin(phi2) - std::sin(phi1) * std::cos(phi2) * std::cos(dLambda)));
  const auto degrees =
      static_cast<float>(std::fmod(static_cast<double>(theta) * kRadiansToDegrees + 360.0, 360.0));
  return degrees < 360.0f ? degrees : 0.0f;
}

float LocationUtils::distanceToHorizon(float observerHeight) {
  return std::sqrt(observerHeight * static_cast<float>(kHorizonFactor / 1000.0));
}

std::string LocationUtils::cardinalNameForBearing(double bearing) {
  return localizedString(CardinalKey(bearing), kTableEphemeris);
}

std::string LocationUtils::latLonStringWithCoordinate(CLLocationCoordinate2D coordinate) {
  const NSUserDefaults* settings = NSUserDefaults::lumenquestUserDefaults();
  const std::int64_t notation =
      settings == nullptr ? 0 : settings->integerForKey(kUserDefaultsCoordinateSystem);
  // What is none of the notations stays none of them in a narrower type.
  return latLonStringWithCoordinate(coordinate,
                                    static_cast<int>(std::clamp<std::int64_t>(notation, -1, 2)));
}

std::string LocationUtils::latLonStringWithCoordinate(CLLocationCoordinate2D coordinate,
                                                      int usingCoordSystem) {
  const std::string northSouth = localizedString(
      coordinate.latitude < 0.0 ? "cardinal_point_south_abbr" : "cardinal_point_north_abbr",
      kTableEphemeris);
  const std::string eastWest = localizedString(
      coordinate.longitude < 0.0 ? "cardinal_point_west_abbr" : "cardinal_point_east_abbr",
      kTableEphemeris);
  const double latitude = std::fabs(coordinate.latitude);
  const double longitude = std::fabs(coordinate.longitude);

  if (usingCoordSystem == kCoordinateSystemDecimalDegrees) {
    NSNumberFormatter& formatter = Formatters::sharedInstance().degreesFormatter();
    return stringWithFormat("%@°%@ %@°%@", {formatter.stringFromNumber(latitude), northSouth,
                                            formatter.stringFromNumber(longitude), eastWest});
  }

  const auto text = [](double number) {
    return Formatters::sharedInstance().sexagesimalFormatter().stringFromNumber(number);
  };
  const Sexagesimal lat(latitude);
  const Sexagesimal lon(longitude);
  if (usingCoordSystem == kCoordinateSystemDecimalMinutes) {
    return stringWithFormat("%@°%@'%@ %@°%@'%@",
                            {text(lat.degrees), text(lat.decimalMinutes), northSouth,
                             text(lon.degrees), text(lon.decimalMinutes), eastWest});
  }
  return stringWithFormat("%@°%@'%@\"%@ %@°%@'%@\"%@",
                          {text(lat.degrees), text(lat.minutes), text(lat.seconds), northSouth,
                           text(lon.degrees), text(lon.minutes), text(lon.seconds), eastWest});
}

std::string LocationUtils::decimalLatLonStringWithCoordinate(CLLocationCoordinate2D coordinate) {
  const auto text = [](double degrees) {
    return Formatters::sharedInstance().plainDegreesFormatter().stringFromNumber(
        static_cast<double>(static_cast<float>(degrees)));
  };
  return stringWithFormat("%@, %@", {text(coordinate.latitude), text(coordinate.longitude)});
}

}  // namespace lumenquest::platform
