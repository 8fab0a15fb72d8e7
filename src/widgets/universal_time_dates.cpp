#include "widgets/universal_time_dates.h"

#include <cmath>

#include "platform/ns_calendar.h"
#include "widgets/lq_date_time.h"

namespace lumenquest::widgets {

using platform::NSCalendar;
using platform::NSDate;

std::optional<NSDate> fromModifiedJulianDate(double mjd) {
  return fromModifiedJulianDate(mjd, false);
}

std::optional<NSDate> fromModifiedJulianDate(double mjd, bool withSeconds) {
  LQDateTime dateTime;
  dateTime.fromModifiedJulianDay(mjd);
  return dateTime.toDate(withSeconds);
}

double modifiedJulianDate(NSDate date) {
  const platform::NSDateComponents components =
      NSCalendar::gmtCachedCalendar().componentsFromDate(date);
  LQDateTime dateTime;
  dateTime.setYear(components.year);
  dateTime.setMonth(components.month);
  dateTime.setDay(components.day);
  dateTime.setHour(components.hour);
  dateTime.setMinutes(components.minute + components.second / 60.0);
  return dateTime.modifiedJulianDay();
}

NSDate dateByAddingNumberOfDays(NSDate date, int days) {
  // The calendar counts whole seconds.
  const double instant = date.timeIntervalSinceReferenceDate();
  const double wholeSeconds = std::floor(instant);
  const NSDate moved = NSCalendar::gmtCachedCalendar().dateByAddingDays(NSDate(wholeSeconds), days);
  return NSDate(moved.timeIntervalSinceReferenceDate() + (instant - wholeSeconds));
}

}  // namespace lumenquest::widgets
