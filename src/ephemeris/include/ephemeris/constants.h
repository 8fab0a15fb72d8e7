#pragma once

/// \file
/// Numbers that several units of the engine share. Each is the double nearest to the true value;
/// the engine's results depend on these very bits.

namespace ephemeris {

inline constexpr double kPi = 3.141592653589793;
inline constexpr double kTwoPi = 6.283185307179586;

/// Degrees to radians and back; a conversion is one multiplication.
inline constexpr double kDegreesToRadians = 0.017453292519943295;
inline constexpr double kRadiansToDegrees = 57.29577951308232;

/// Hours to radians and back.
inline constexpr double kHoursToRadians = 0.2617993877991494;
inline constexpr double kRadiansToHours = 3.8197186342054885;

/// Arcseconds in a radian.
inline constexpr double kArcsecondsPerRadian = 206264.80624709636;

/// Arcseconds in a revolution.
inline constexpr double kArcsecondsPerRevolution = 1296000.0;

/// MJD of the epoch J2000.0.
inline constexpr double kMjdJ2000 = 51544.5;

/// JD − MJD.
inline constexpr double kMjdOffset = 2400000.5;

inline constexpr double kDaysPerJulianCentury = 36525.0;

/// The Earth's equatorial radius, km.
inline constexpr double kEarthRadiusKm = 6378.137;

// What stands in an MJD where there is no instant. Real instants of interest are positive.

/// This crossing does not occur in the day searched.
inline constexpr double kMjdNoRiseOrSet = -2.0;
/// The body stays above the threshold all day.
inline constexpr double kMjdCircumpolar = -3.0;
/// The body stays below the threshold all day; also: no visibility of the galactic centre.
inline constexpr double kMjdAlwaysInvisible = -4.0;

}  // namespace ephemeris
