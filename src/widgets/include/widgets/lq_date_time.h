#pragma once

#include <cstdint>
#include <optional>

#include "platform/ns_date.h"

namespace lumenquest::widgets {

/// MJD of 2000 January 1.5.
inline constexpr double MJD_J2000 = 51544.5;

/// A calendar date and time in Universal Time, with the conversions that the views need without the
/// engine. Years are numbered astronomically (1 BC is 0); the calendar is Julian before
/// 1582-10-05 and Gregorian from that day on, so that 5 to 14 October, which nobody lived through,
/// count as Gregorian. Dates from −4712 on convert.
///
/// An integer term that leaves 64 bits, or a number that is not finite where whole days or minutes
/// are taken from it, is a programming error.
/// Source: Meeus, Astronomical Algorithms, chapters 7 and 12.
class LQDateTime {
 public:
  /// In a field of the date: the date is unset.
  static constexpr std::int64_t kUnset = -1;

  /// Every field 0.
  LQDateTime() = default;

  std::int64_t getYear() const { return year_; }
  void setYear(std::int64_t year) { year_ = year; }
  /// 1…12
  std::int64_t getMonth() const { return month_; }
  void setMonth(std::int64_t month) { month_ = month; }
  /// Of the month, from 1.
  std::int64_t getDay() const { return day_; }
  void setDay(std::int64_t day) { day_ = day; }
  /// 0…23
  std::int64_t getHour() const { return hour_; }
  void setHour(std::int64_t hour) { hour_ = hour; }
  /// Of the hour, the seconds as their fraction.
  double getMinutes() const { return minutes_; }
  void setMinutes(double minutes) { minutes_ = minutes; }

  /// Hours since midnight.
  double time() const;

  // Days.

  double modifiedJulianDay() const;
  double julianDay() const;
  /// The Julian Day in Terrestrial Time.
  double julianEphemerisDay() const;
  /// Fill the record.
  void fromModifiedJulianDay(double mjd);
  void fromJulianDay(double jd);

  /// Julian centuries since J2000.0, in Universal and in Terrestrial Time.
  double julianCenturies() const;
  double julianEphemerisCenturies() const;
  static double mjdToJulianCenturies(double mjd);

  /// Greenwich mean sidereal time in hours, 0 ≤ h < 24, of an MJD (UT).
  static double siderealTimeAtGreenwich(double mjd);

  // Years.

  /// By the Gregorian rule, whatever the year.
  bool isLeapYear() const;
  /// The year and the days that have passed in it, over 365 in leap years too. From July on it is a
  /// day short. A month outside 0…12 is a programming error.
  double decimalYear() const;
  /// TT − UT at decimalYear(), in days.
  /// Source: Espenak and Meeus, Polynomial Expressions for Delta T, NASA (2006).
  double deltaT() const;

  // Comparison, by year, month, day, hour and minutes.

  /// Whether no field of the date is kUnset.
  bool isValid() const;
  bool operator==(const LQDateTime& other) const = default;
  bool beforeOrEquals(const LQDateTime& other) const;
  bool afterOrEquals(const LQDateTime& other) const;
  /// 0 when both are equal, −1 when this one comes first, else 1.
  int comapreTo(const LQDateTime& other) const;

  /// The instant, to the nearest minute (halves up), or to the second that has begun; absent when
  /// it is beyond the calendar.
  std::optional<platform::NSDate> toDate() const;
  std::optional<platform::NSDate> toDate(bool withSeconds) const;

 private:
  std::int64_t year_ = 0;
  std::int64_t month_ = 0;
  std::int64_t day_ = 0;
  std::int64_t hour_ = 0;
  double minutes_ = 0.0;
};

}  // namespace lumenquest::widgets
