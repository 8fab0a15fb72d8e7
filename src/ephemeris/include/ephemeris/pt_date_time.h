#pragma once

#include <cstdint>

namespace ephemeris {

/// A calendar date and time in Universal Time, and the owner of the system's time unit, the
/// Modified Julian Date: MJD = JD − 2400000.5, days from 1858-11-17 00:00.
///
/// The calendar is Julian up to 1582-10-04 and Gregorian from 1582-10-15 on; years are numbered
/// astronomically (1 BC is 0). Dates from −4712 on convert.
/// Source: Montenbruck and Pfleger, Astronomy on the Personal Computer; Meeus, Astronomical
/// Algorithms, chapter 7.
class PtDateTime {
 public:
  std::int32_t year = 0;
  std::int32_t month = 0;
  std::int32_t day = 0;
  std::int32_t hour = 0;
  /// Minutes of the hour, the seconds as their fraction: 12 min 30 s is 12.5.
  double minute = 0.0;

  /// MJD of the record.
  double ModifiedJulianDay() const;
  double JulianDay() const;

  /// Fill the record. The minute is rounded to five decimals in single precision, so it can read
  /// 60.0 just before a full hour.
  void FromModifiedJulianDay(double mjd);
  void FromJulianDay(double jd);

  /// TT − UT at the record's date, in days. The expressions take their coefficients from Espenak
  /// and Meeus, Polynomial Expressions for Delta T (2006), but carry signs of their own; results
  /// before 1600 are far from the published ones.
  double DeltaT() const;

  /// Julian centuries since J2000.0 of an MJD.
  static double MjdToJulianCenturies(double mjd);

  /// Greenwich mean sidereal time in hours, 0 ≤ h < 24, of an MJD (UT).
  static double SiderealTimeAtGreenwich(double mjd);

  bool operator==(const PtDateTime& other) const = default;
  bool operator<(const PtDateTime& other) const;
  bool operator<=(const PtDateTime& other) const;
};

}  // namespace ephemeris
