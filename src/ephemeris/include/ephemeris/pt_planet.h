#pragma once

#include <cstdint>

#include "ephemeris/matrix3d.h"
#include "ephemeris/position_memory.h"
#include "ephemeris/pt_polar.h"
#include "ephemeris/pt_position.h"
#include "ephemeris/vector3d.h"

namespace ephemeris {

/// Which altitude crossing FindEvents() looks for. The thresholds are geometric altitudes of the
/// body's centre, but for RiseSet: upper limb on the apparent horizon.
enum class SearchEvent : std::int32_t {
  CivilTwilight = 0,         ///< −6°
  NauticalTwilight = 1,      ///< −12°
  AstronomicalTwilight = 2,  ///< −18°
  RiseSet = 3,               ///< refraction, dip, parallax and semidiameter accounted for
  GoldenHour = 4,            ///< +6°
  BlueHour = 5,              ///< −4°
};

/// Which point of the disc an altitude is meant of.
enum class AltitudeType : std::int32_t { UpperLimb = 0, Center = 1 };

/// A body of the sky as one observer sees it: from the geocentric ecliptic position that a subclass
/// gives, to the true equatorial place of date, topocentric place, azimuth and elevation, and the
/// search for altitude crossings.
///
/// Each computation leaves its results in the object, where later calls read them. One object
/// serves one computation at a time. Units: observer, azimuth and elevation in degrees; vectors and
/// other angles in radians; sidereal times in hours; distances in the unit of the subclass. Source:
/// Montenbruck and Pfleger, Astronomy on the Personal Computer; refraction after Bennett and
/// Sæmundsson (Meeus, chapter 16).
class PtPlanet {
 public:
  explicit PtPlanet(const PtPosition& observer);
  virtual ~PtPlanet() = default;

  /// Finds when the body's altitude crosses a threshold upward (`rise`) and downward (`set`) in the
  /// 24 hours from `mjd0` (MJD, UT). `deltaT` is TT − UT in days.
  ///
  /// A result is an MJD; or kMjdNoRiseOrSet when only the other crossing occurs; or, for both,
  /// kMjdCircumpolar (above all day) or kMjdAlwaysInvisible (below all day). The altitude is
  /// sampled every hour and each crossing taken from a parabola through three samples, which leaves
  /// it some 16 s from the true one at most. An unknown event stops the program.
  virtual void FindEvents(SearchEvent event, double mjd0, double deltaT, double* rise, double* set);

  /// Geocentric ecliptic position, mean equinox of date. `T`: Julian centuries of dynamical time
  /// since J2000.0.
  virtual Vector3D GetEclipticPosition(double T, bool highPrecision) = 0;

  /// Geocentric position for the true equator and equinox of date.
  virtual Vector3D GetEquatorialPosition(double mjd, double deltaT, bool highPrecision);

  /// Sine of the horizontal parallax at a distance.
  virtual double CalculateSinPi(double distance) = 0;

  /// Semidiameter in degrees; to be divided by the topocentric distance in units of the geocentric.
  virtual double CalculateSemidiameterAtUnitDistance(double sinPi, double distance) = 0;

  /// The object's own copy of the observer, to be changed in place before a computation.
  PtPosition* observer() { return &observer_; }

  /// The whole chain to the apparent place: fills equatorialPosition(), horizontalPosition(),
  /// semidiameter() and hourAngle(). `mjd` is UT, `deltaT` days.
  void CalculateEclipticEquatorialAndHorizontalPositions(double mjd, double deltaT,
                                                         bool highPrecision);

  /// Greenwich apparent sidereal time in hours, with the nutation of the last position computed.
  double CalculateApparentSiderealTime(double mjd);

  /// Rotation from ecliptic to equatorial coordinates of date; stores the mean obliquity.
  Matrix3D EclipticToEquatorialMatrix(double T);

  /// Rotation from mean to true equator and equinox of date; stores the nutation angles.
  Matrix3D NutationMatrix(double T);

  /// Topocentric hour angle and declination (radians) and semidiameter (degrees) of a geocentric
  /// equatorial position; stores the geocentric hour angle.
  void EquatorialToTopocentricCoordinates(double gastHours, Vector3D* equatorial,
                                          double* topoHourAngle, double* topoDeclination,
                                          double* topoSemidiameter);

  /// Azimuth (0 north, 90 east) and true elevation in degrees, with the distance passed through.
  PtPolar TopocentricToHorizontalCoordinates(double hourAngle, double declination, double distance);

  /// Refraction in degrees of an apparent or of a true elevation in degrees; it fades to 0 a few
  /// degrees below the horizon.
  double RefractionApparent(double apparentElevation);
  double RefractionTrue(double trueElevation);

  /// Degrees in, degrees out. The unnamed arguments (observer's height, horizon height) are
  /// ignored.
  double TrueToApparentElevation(double trueElevation, double, double);
  double ApparentToTrueElevation(double apparentElevation, double, double horizonHeight);

  /// Geocentric elevation that belongs to an apparent topocentric one, degrees.
  double GetGeoElevation(double sinPi, double apparentElevation);

  /// Sine of the body's geocentric altitude at mjd0 + hour/24. The unnamed argument is ignored.
  double SinAlt(double mjd0, double deltaT, double hour, double, double cosLat, double sinLat);

  /// Sine of the geocentric altitude at which centre or upper limb stands at the given apparent
  /// altitude (degrees), the body being at `distance`.
  double GetSinH(double altitude, AltitudeType type, double distance);

  const Vector3D& eclipticPosition() const { return eclipticPosition_; }
  const Vector3D& equatorialPosition() const { return equatorialPosition_; }
  /// phi: azimuth, theta: apparent elevation (at most 90), both degrees; r: geocentric distance.
  const PtPolar& horizontalPosition() const { return horizontalPosition_; }
  /// Topocentric semidiameter, degrees.
  double semidiameter() const { return semidiameter_; }
  /// Geocentric hour angle, radians in 0…2π.
  double hourAngle() const { return hourAngle_; }
  double obliquity() const { return obliquity_; }
  double nutationInLongitude() const { return nutationInLongitude_; }
  double nutationInObliquity() const { return nutationInObliquity_; }

  /// How many positions were computed rather than recalled, for benchmarks.
  std::int64_t positionsComputed() const { return positionsComputed_; }

 protected:
  PtPlanet(const PtPlanet&) = default;
  PtPlanet& operator=(const PtPlanet&) = default;

  /// Brings the fields and the result of an earlier identical call back. False when there was none.
  bool RecallPosition(const PositionMemory::Key& key, Vector3D* trueEquatorial);

  /// Keeps the fields and the result of the position just computed.
  void RememberPosition(const PositionMemory::Key& key, const Vector3D& trueEquatorial);

  PtPosition observer_;
  double refractionFactor_;
  Vector3D eclipticPosition_;
  Vector3D equatorialPosition_;
  PtPolar horizontalPosition_;
  double semidiameter_ = 0.0;
  double hourAngle_ = 0.0;
  double obliquity_ = 0.0;
  double nutationInLongitude_ = 0.0;
  double nutationInObliquity_ = 0.0;

 private:
  /// Brings the fields back to what they were after the entry's position was computed.
  void Restore(const PositionMemory::Entry& entry);

  /// What an altitude at this instant needs; computes or recalls the position.
  PositionMemory::Sample SampleAt(double mjd, double deltaT);

  PositionMemory memory_;
  std::int64_t positionsComputed_ = 0;
};

}  // namespace ephemeris
