#pragma once

#include "platform/ns_calendar.h"

namespace lumenquest::platform {

/// Puts the shared cached calendar into a zone and gives it its own back in the end.
class CalendarZone {
 public:
  explicit CalendarZone(const NSTimeZone& zone)
      : calendar_(NSCalendar::cachedCalendar()), own_(calendar_.timeZone()) {
    calendar_.setTimeZone(zone);
  }
  ~CalendarZone() { calendar_.setTimeZone(own_); }
  CalendarZone(const CalendarZone&) = delete;
  CalendarZone& operator=(const CalendarZone&) = delete;

 private:
  NSCalendar& calendar_;
  NSTimeZone own_;
};

}  // namespace lumenquest::platform
