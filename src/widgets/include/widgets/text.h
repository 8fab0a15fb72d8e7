#pragma once

#include <string>

#include "widgets/location/location_widget_data.h"

namespace lumenquest::widgets {

// Texts that several widgets have in common.

/// The zone of a record's times.
platform::NSTimeZone zoneOf(const LocationWidgetData& data);

/// The time of an event (MJD, UT) in the record's zone, or the words of a special value; with a
/// mark when it lies after the day shown.
std::string eventTimeText(double mjd, double mjdTomorrowAt0, const LocationWidgetData& data);

/// For those who listen: a value with what it is.
std::string spokenLine(const std::string& heading, const std::string& value);
/// ... and a text of eventTimeText() or one that ends in it, without the mark of the next day.
std::string spokenTime(const std::string& text);

}  // namespace lumenquest::widgets
