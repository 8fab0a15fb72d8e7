#include "platform/ns_date.h"

#include <array>
#include <cmath>
#include <cstddef>

#include "platform/localized_strings.h"
#include "platform/ns_calendar.h"
#include "platform/services.h"

namespace lumenquest::platform {

namespace {

NSDateComponents LocalComponents(NSDate date) {
  return NSCalendar::cachedCalendar().componentsFromDate(date);
}

/// The same local day at another time.
NSDate DayAt(NSDate date, int hour, int minute, int second) {
  NSDateComponents components = LocalComponents(date);
  components.hour = hour;
  components.minute = minute;
  components.second = second;
  return NSCalendar::cachedCalendar().dateFromComponents(components);
}

}  // namespace

NSDate NSDate::date() { return Services::current().clock().now(); }

NSDate NSDate::dateWithPtDateTime(const ephemeris::PtDateTime& ptDateTime, bool withSeconds) {
  NSDateComponents components;
  components.year = ptDateTime.year;
  components.month = ptDateTime.month;
  components.day = ptDateTime.day;
  components.hour = ptDateTime.hour;
  if (withSeconds) {
    components.minute = static_cast<int>(ptDateTime.minute);
    components.second = static_cast<int>((ptDateTime.minute - components.minute) * 60.0);
  } else {
    // A minute of 60 is left to the calendar, which carries it into the next hour.
    components.minute = static_cast<int>(ptDateTime.minute + 0.5);
  }
  return NSCalendar::gmtCachedCalendar().dateFromComponents(components);
}

NSDate NSDate::dateWithPtDateTime(const ephemeris::PtDateTime& ptDateTime) {
  return dateWithPtDateTime(ptDateTime, false);
}

void NSDate::ptDateTimeForDate(NSDate date, ephemeris::PtDateTime* PtDateTime) {
  const NSDateComponents components = NSCalendar::gmtCachedCalendar().componentsFromDate(date);
  PtDateTime->year = components.year;
  PtDateTime->month = components.month;
  PtDateTime->day = components.day;
  PtDateTime->hour = components.hour;
  PtDateTime->minute = components.minute + components.second / 60.0;
}

NSDate NSDate::dateFromModifiedJulianDay(double mjd) {
  return dateFromModifiedJulianDay(mjd, false);
}

NSDate NSDate::dateFromModifiedJulianDay(double mjd, bool withSeconds) {
  ephemeris::PtDateTime ptDateTime;
  ptDateTime.FromModifiedJulianDay(mjd);
  return dateWithPtDateTime(ptDateTime, withSeconds);
}

ephemeris::PtDateTime NSDate::ptDateTime() const {
  ephemeris::PtDateTime record;
  ptDateTimeForDate(*this, &record);
  return record;
}

double NSDate::modifiedJulianDay() const { return ptDateTime().ModifiedJulianDay(); }

NSDate NSDate::dateWithStartDateTime(NSDate date) { return DayAt(date, 0, 0, 0); }

NSDate NSDate::dateWithNoonDateTime(NSDate date) { return DayAt(date, 12, 0, 0); }

NSDate NSDate::dateWithEndDateTime(NSDate date) { return DayAt(date, 23, 59, 59); }

bool NSDate::date(NSDate date, NSDate isBetweenDate, NSDate andDate) {
  return isBetweenDate < date && date < andDate;
}

NSDate NSDate::closestDateFromDate(NSDate fromDate, NSDate toDate, NSDate ofDate) {
  if (date(ofDate, fromDate, toDate)) return ofDate;
  const double fromDistance = std::fabs(fromDate.timeInterval_ - ofDate.timeInterval_);
  const double toDistance = std::fabs(toDate.timeInterval_ - ofDate.timeInterval_);
  return fromDistance < toDistance ? fromDate : toDate;
}

bool NSDate::isDate(NSDate date, NSDate sameDayAsDate) {
  const NSDateComponents a = LocalComponents(date);
  const NSDateComponents b = LocalComponents(sameDayAsDate);
  return a.day == b.day && a.month == b.month && a.year == b.year;
}

NSDate NSDate::firstDayOfYear(int year) {
  NSDateComponents components;
  components.year = year;
  const auto calendar = Services::current().calendars().currentCalendar();
  return dateWithStartDateTime(calendar->dateFromComponents(components));
}

NSDate NSDate::dateByAddingNumberOfDays(int numberOfDays) const {
  if (numberOfDays == 0) return *this;
  const double wholeSeconds = std::floor(timeInterval_);
  const NSDate moved =
      NSCalendar::cachedCalendar().dateByAddingDays(NSDate(wholeSeconds), numberOfDays);
  return NSDate(moved.timeInterval_ + (timeInterval_ - wholeSeconds));
}

int NSDate::yearValue() const { return LocalComponents(*this).year; }
int NSDate::monthValue() const { return LocalComponents(*this).month; }
int NSDate::dayValue() const { return LocalComponents(*this).day; }
int NSDate::hourValue() const { return LocalComponents(*this).hour; }
int NSDate::minuteValue() const { return LocalComponents(*this).minute; }

float NSDate::floatHour() const {
  const NSDateComponents components = LocalComponents(*this);
  return static_cast<float>(components.hour + components.minute / 24.0);
}

double NSDate::timeAsFractionOfDay() const {
  const NSDateComponents components = LocalComponents(*this);
  return (components.hour + components.minute / 60.0 + components.second / 3600.0) / 24.0;
}

NSDate NSDate::nextMainHour() const {
  NSDateComponents components = LocalComponents(*this);
  components.hour += 1;
  components.minute = 0;
  components.second = 0;
  return NSCalendar::cachedCalendar().dateFromComponents(components);
}

NSDate NSDate::previousMainHour() const {
  NSDateComponents components = LocalComponents(*this);
  components.minute = 0;
  return NSCalendar::cachedCalendar().dateFromComponents(components);
}

int NSDate::weekday() const {
  return Services::current().calendars().currentCalendar()->dayInWeek(*this);
}

std::string NSDate::weekdayAbbreviation() const {
  static constexpr std::array<const char*, 7> keys{
      "week_day_abbr_su", "week_day_abbr_mo", "week_day_abbr_tu", "week_day_abbr_we",
      "week_day_abbr_th", "week_day_abbr_fr", "week_day_abbr_sa"};
  const int weekday = Services::current().calendars().currentCalendar()->weekday(*this);
  return localizedString(keys[static_cast<std::size_t>(weekday - 1)], kTableCommon);
}

int NSDate::numberOfDaysInMonth() const {
  return Services::current().calendars().currentCalendar()->numberOfDaysInMonth(*this);
}

}  // namespace lumenquest::platform
