#pragma once

#include <optional>

#include "platform/ns_date.h"

// The widgets' own extension of dates. Unlike the members of NSDate, which follow the user's local
// day, everything here counts in Universal Time.

namespace lumenquest::widgets {

/// The instant of an MJD, to the nearest minute, or to the second that has begun; absent when it is
/// beyond the calendar.
std::optional<platform::NSDate> fromModifiedJulianDate(double mjd);
std::optional<platform::NSDate> fromModifiedJulianDate(double mjd, bool withSeconds);

/// The MJD of an instant, in whole seconds.
double modifiedJulianDate(platform::NSDate date);

/// n days of Universal Time further (or back): 24 hours each, whatever the user's clock does.
platform::NSDate dateByAddingNumberOfDays(platform::NSDate date, int days);

}  // namespace lumenquest::widgets
