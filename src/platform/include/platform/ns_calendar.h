#pragma once

#include "platform/ns_date.h"
#include "platform/ns_time_zone.h"

namespace lumenquest::platform {

/// Fields of a date in a calendar and zone. Years are astronomical.
struct NSDateComponents {
  int year = 1;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

/// A Gregorian calendar (Julian up to 1582-10-04) with a time zone and a first weekday.
class NSCalendar {
 public:
  virtual ~NSCalendar() = default;

  virtual NSTimeZone timeZone() const = 0;
  virtual void setTimeZone(const NSTimeZone& zone) = 0;

  virtual NSDateComponents componentsFromDate(NSDate date) = 0;
  /// Lenient: a minute of 60 or a day of 32 carries on. A local time that does not exist moves
  /// forward by the gap; one that exists twice is its first occurrence.
  virtual NSDate dateFromComponents(const NSDateComponents& components) = 0;
  /// n calendar days further (or back) at the same wall-clock time, in whole seconds.
  virtual NSDate dateByAddingDays(NSDate date, int days) = 0;
  /// n minutes of elapsed time further (or back).
  virtual NSDate dateByAddingMinutes(NSDate date, int minutes) = 0;
  /// 1…7, 1 being Sunday.
  virtual int weekday(NSDate date) = 0;
  /// 1…7, counted from the calendar's first weekday.
  virtual int dayInWeek(NSDate date) = 0;
  /// Length of the month that holds the instant.
  virtual int numberOfDaysInMonth(NSDate date) = 0;

  /// The user's calendar as it was when first asked for, shared by the process and guarded by a
  /// lock of its own.
  static NSCalendar& cachedCalendar();
  /// The calendar of all engine-side conversions, in GMT; shared and guarded likewise.
  static NSCalendar& gmtCachedCalendar();
};

}  // namespace lumenquest::platform
