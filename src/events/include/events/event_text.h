#pragma once

#include <string>

namespace lumenquest::events {

/// The time of an event (MJD, UT) in the shared formatters' zone, with a mark when it belongs to
/// the day before or after; the words of a special value. The day is given by its midnight and the
/// next (MJD, UT).
std::string eventText(double mjd, double mjdTodayAt0, double mjdTomorrowAt0);

}  // namespace lumenquest::events
