#pragma once

#include <string>
#include <vector>

#include "widgets/location/location_widget_data.h"

namespace lumenquest::widgets {

/// One of the two times of a body's line.
struct BodyRiseSetTime {
  bool isRise = true;
  /// The time, or that there is none today.
  std::string text;
};

/// What a body's rise/set line shows: its times, or one sentence in their place.
struct RiseSetContent {
  std::vector<BodyRiseSetTime> times;
  std::string sentence;
};

/// `rise` and `set` are MJD (UT) or special values. A body that stays up or down all day gets the
/// sentence that says so. When it only rises, or only sets, the other time says that there is none.
/// A record without values, all 0, shows nothing.
RiseSetContent riseSetContent(double rise, double set, double mjdTomorrowAt0,
                              const LocationWidgetData& data);

}  // namespace lumenquest::widgets
