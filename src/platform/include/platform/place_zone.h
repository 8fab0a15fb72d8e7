#pragma once

#include "platform/calendar_zone.h"
#include "platform/formatters.h"

namespace lumenquest::platform {

/// Puts the shared calendar and the shared formatters into a place's zone and gives them their own
/// back in the end, whatever happens meanwhile.
class PlaceZone {
 public:
  explicit PlaceZone(const NSTimeZone& zone)
      : formatters_(Formatters::sharedInstance()), own_(formatters_.timeZone()), calendar_(zone) {
    formatters_.setTimeZone(zone);
  }
  ~PlaceZone() { formatters_.setTimeZone(own_); }
  PlaceZone(const PlaceZone&) = delete;
  PlaceZone& operator=(const PlaceZone&) = delete;

 private:
  Formatters& formatters_;
  NSTimeZone own_;
  CalendarZone calendar_;
};

}  // namespace lumenquest::platform
