#pragma once

#include <compare>
#include <string>

#include "ephemeris/pt_date_time.h"

namespace lumenquest::platform {

/// An instant: seconds since the reference date, 2001-01-01 00:00:00 UTC.
///
/// The members below the accessors are the bridge between instants and the engine's times. Engine
/// conversions go through the shared GMT calendar, so PtDateTime fields are always UT; "day"
/// operations go through the shared cached calendar and follow the user's local day.
class NSDate {
 public:
  /// Seconds from 1970-01-01 00:00:00 UTC to the reference date.
  static constexpr double kReferenceSince1970 = 978307200.0;

  constexpr NSDate() = default;
  constexpr explicit NSDate(double timeIntervalSinceReferenceDate)
      : timeInterval_(timeIntervalSinceReferenceDate) {}

  /// Now, by the injected clock.
  static NSDate date();
  static constexpr NSDate dateWithTimeIntervalSince1970(double seconds) {
    return NSDate(seconds - kReferenceSince1970);
  }

  constexpr double timeIntervalSinceReferenceDate() const { return timeInterval_; }
  constexpr double timeIntervalSince1970() const { return timeInterval_ + kReferenceSince1970; }

  auto operator<=>(const NSDate&) const = default;

  // Engine times. Without seconds the minute is rounded to the nearest, halves up.

  static NSDate dateWithPtDateTime(const ephemeris::PtDateTime& ptDateTime, bool withSeconds);
  static NSDate dateWithPtDateTime(const ephemeris::PtDateTime& ptDateTime);
  /// Fills `PtDateTime` with the instant's UT fields; parts of a second are dropped.
  static void ptDateTimeForDate(NSDate date, ephemeris::PtDateTime* PtDateTime);
  /// The same as a new record.
  ephemeris::PtDateTime ptDateTime() const;
  static NSDate dateFromModifiedJulianDay(double mjd);
  static NSDate dateFromModifiedJulianDay(double mjd, bool withSeconds);
  double modifiedJulianDay() const;

  // Days, in the cached calendar.

  /// The same local day at 00:00:00, 12:00:00, 23:59:59.
  static NSDate dateWithStartDateTime(NSDate date);
  static NSDate dateWithNoonDateTime(NSDate date);
  static NSDate dateWithEndDateTime(NSDate date);
  /// Strictly between both.
  static bool date(NSDate date, NSDate isBetweenDate, NSDate andDate);
  /// `ofDate` itself when it lies strictly between the two, else the nearer one (a tie gives
  /// toDate).
  static NSDate closestDateFromDate(NSDate fromDate, NSDate toDate, NSDate ofDate);
  static bool isDate(NSDate date, NSDate sameDayAsDate);
  /// 1 January, start of the day.
  static NSDate firstDayOfYear(int year);

  /// n calendar days further (or back), at the same wall-clock time.
  NSDate dateByAddingNumberOfDays(int numberOfDays) const;
  int yearValue() const;
  int monthValue() const;
  int dayValue() const;
  int hourValue() const;
  int minuteValue() const;
  /// hour + minute / 24. The divisor is not 60: what reads this value is scaled to it.
  float floatHour() const;
  /// Local time as a fraction of 24 hours, with seconds.
  double timeAsFractionOfDay() const;
  /// The next full hour of the clock, also from an instant on a full hour.
  NSDate nextMainHour() const;
  /// The same hour with its minute cleared and its second kept: 10:25:37 gives 10:00:37.
  NSDate previousMainHour() const;

  // In the user's current calendar, read afresh.

  /// Place of the day in its week, 1…7, counted from the user's first weekday.
  int weekday() const;
  /// Localised abbreviation of the weekday.
  std::string weekdayAbbreviation() const;
  int numberOfDaysInMonth() const;

 private:
  double timeInterval_ = 0.0;
};

}  // namespace lumenquest::platform
