#include <unicode/gregocal.h>

#include <cmath>
#include <utility>

#include "adapters/icu_services.h"
#include "icu_strings.h"
#include "icu_time_zone.h"
#include "platform/assertion.h"

namespace lumenquest::adapters {

namespace {

using platform::NSDate;
using platform::NSDateComponents;
using platform::NSTimeZone;

/// Gregorian in every locale: a Buddhist or Persian year must never reach the engine.
class IcuCalendar final : public platform::NSCalendar {
 public:
  IcuCalendar(const std::string& locale, const NSTimeZone& zone)
      : zone_(zone), calendar_(NewCalendar(locale, zone)) {}

  NSTimeZone timeZone() const override { return zone_; }

  void setTimeZone(const NSTimeZone& zone) override {
    if (zone == zone_) return;
    zone_ = zone;
    calendar_->adoptTimeZone(makeIcuTimeZone(zone).release());
  }

  NSDateComponents componentsFromDate(NSDate date) override {
    Set(date);
    NSDateComponents components;
    components.year = Get(UCAL_EXTENDED_YEAR);
    components.month = Get(UCAL_MONTH) + 1;
    components.day = Get(UCAL_DATE);
    components.hour = Get(UCAL_HOUR_OF_DAY);
    components.minute = Get(UCAL_MINUTE);
    components.second = Get(UCAL_SECOND);
    return components;
  }

  NSDate dateFromComponents(const NSDateComponents& components) override {
    calendar_->clear();
    calendar_->set(UCAL_EXTENDED_YEAR, components.year);
    calendar_->set(UCAL_MONTH, components.month - 1);
    calendar_->set(UCAL_DATE, components.day);
    SetTime(components);
    return Resolve();
  }

  NSDate dateByAddingDays(NSDate date, int days) override {
    // Counted in Julian days, which know nothing of the days dropped in October 1582.
    const NSDateComponents time = componentsFromDate(date);
    const int julianDay = Get(UCAL_JULIAN_DAY) + days;
    calendar_->clear();
    calendar_->set(UCAL_JULIAN_DAY, julianDay);
    SetTime(time);
    return Resolve();
  }

  NSDate dateByAddingMinutes(NSDate date, int minutes) override {
    UErrorCode status = U_ZERO_ERROR;
    // The calendar counts milliseconds; what is finer is added again.
    const double millis = std::floor(date.timeIntervalSince1970() * 1000.0);
    const double rest = date.timeIntervalSince1970() - millis / 1000.0;
    calendar_->setTime(millis, status);
    calendar_->add(UCAL_MINUTE, minutes, status);
    LUMENQUEST_ASSERT(U_SUCCESS(status));
    return NSDate::dateWithTimeIntervalSince1970(Resolve().timeIntervalSince1970() + rest);
  }

  int weekday(NSDate date) override {
    Set(date);
    return Get(UCAL_DAY_OF_WEEK);
  }

  int dayInWeek(NSDate date) override {
    Set(date);
    return Get(UCAL_DOW_LOCAL);
  }

  int numberOfDaysInMonth(NSDate date) override {
    Set(date);
    UErrorCode status = U_ZERO_ERROR;
    return calendar_->getActualMaximum(UCAL_DATE, status);
  }

 private:
  static std::unique_ptr<icu::GregorianCalendar> NewCalendar(const std::string& locale,
                                                             const NSTimeZone& zone) {
    UErrorCode status = U_ZERO_ERROR;
    auto calendar = std::make_unique<icu::GregorianCalendar>(makeIcuTimeZone(zone).release(),
                                                             icu::Locale(locale.c_str()), status);
    LUMENQUEST_ASSERT(U_SUCCESS(status));
    return calendar;
  }

  void SetTime(const NSDateComponents& components) {
    calendar_->set(UCAL_HOUR_OF_DAY, components.hour);
    calendar_->set(UCAL_MINUTE, components.minute);
    calendar_->set(UCAL_SECOND, components.second);
  }

  NSDate Resolve() {
    UErrorCode status = U_ZERO_ERROR;
    const UDate millis = calendar_->getTime(status);
    LUMENQUEST_ASSERT(U_SUCCESS(status));
    return NSDate::dateWithTimeIntervalSince1970(millis / 1000.0);
  }

  void Set(NSDate date) {
    UErrorCode status = U_ZERO_ERROR;
    calendar_->setTime(std::floor(date.timeIntervalSince1970() * 1000.0), status);
    LUMENQUEST_ASSERT(U_SUCCESS(status));
  }

  int Get(UCalendarDateFields field) {
    UErrorCode status = U_ZERO_ERROR;
    const int value = calendar_->get(field, status);
    LUMENQUEST_ASSERT(U_SUCCESS(status));
    return value;
  }

  NSTimeZone zone_;
  std::unique_ptr<icu::GregorianCalendar> calendar_;
};

}  // namespace

IcuCalendarService::IcuCalendarService(std::string locale,
                                       std::shared_ptr<platform::TimeZoneService> timeZones)
    : locale_(std::move(locale)), timeZones_(std::move(timeZones)) {}

std::unique_ptr<platform::NSCalendar> IcuCalendarService::currentCalendar() {
  return gregorianCalendar(timeZones_->localTimeZone());
}

std::unique_ptr<platform::NSCalendar> IcuCalendarService::gregorianCalendar(
    const NSTimeZone& zone) {
  return std::make_unique<IcuCalendar>(locale_, zone);
}

}  // namespace lumenquest::adapters
