#pragma once

#include <optional>
#include <string>

#include "app/command_set.h"
#include "events/widget_astrolib.h"
#include "platform/core_location.h"
#include "platform/ns_date.h"
#include "platform/ns_time_zone.h"

namespace lumenquest::app {

/// A place's day: where, when, and everything computed for it.
struct TodayReport {
  platform::CLLocation location;
  /// The place's name, when it was asked for by name.
  std::optional<std::string> title;
  platform::NSTimeZone timeZone;
  platform::NSDate instant;
  events::WidgetAstrolib values;
  /// Next date with the galactic centre when tonight is without.
  std::optional<platform::NSDate> dateNextVisiblity;
};

/// Computes the day at the injected clock's instant. Leaves the shared formatters in the place's
/// zone.
TodayReport computeToday(const platform::CLLocation& location,
                         const platform::NSTimeZone& timeZone);

/// `lumenquest today`.
void addTodayCommand(CommandSet& commands);

/// For scripts: every value of the calculator under its own name.
std::string todayJson(const TodayReport& report);

/// For people: a table to read at a glance.
std::string todayText(const TodayReport& report);

}  // namespace lumenquest::app
