#pragma once

#include <optional>
#include <string>
#include <vector>

#include "widgets/location/location_widget_data.h"
#include "widgets/widget_kit.h"

namespace lumenquest::widgets {

/// When the galactic centre can be seen tonight. Instants are MJD (UT), angles degrees.
struct GalacticCenterWidgetData {
  GalacticCenterWidgetData() = default;
  explicit GalacticCenterWidgetData(const RecordSources& sources);

  /// Whether the centre can be seen tonight.
  bool hasWindow() const;

  LocationWidgetData locationData;
  double mjdTomorrowAt0 = 0.0;
  double mjdVisibilityFrom = 0.0;
  /// Tilt of the galactic band at the window's ends: 0 upright, 90 along the horizon, to the left
  /// of its foot where negative.
  double visibilityFromAngle = 0.0;
  double mjdVisibilityTo = 0.0;
  double visibilityToAngle = 0.0;
  float moonlessHours = 0.0f;
  std::optional<platform::NSDate> dateNextVisibility;
  /// Azimuth of the centre at the window's ends, clockwise from north.
  double visibilityFromAzimuth = 0.0;
  double visibilityToAzimuth = 0.0;

  bool operator==(const GalacticCenterWidgetData&) const = default;
};

/// One end of the window.
struct GCRiseSetTime {
  bool isBegin = true;
  std::string title;
  /// With a mark when it lies after midnight.
  std::string time;
  /// "178° S"
  std::string azimuth;
  /// Degrees, as in the record.
  double bandTilt = 0.0;
};

/// What the galactic centre's views show: the window, or else that there is none, and when there
/// will be; nothing for a record without values.
struct GCVisibilityContent {
  std::vector<GCRiseSetTime> window;
  std::string alwaysInvisible;
  /// When it can be seen next.
  std::string notVisibleUntil;
  /// In the large family alone.
  std::string moonlessHoursTitle;
  std::string moonlessHours;
};

GCVisibilityContent gcVisibilityContent(const GalacticCenterWidgetData& data, WidgetFamily family);

/// "2h 15m". Hours that are not finite, or beyond 64 bits, are a programming error. Minutes are
/// rounded and not carried: 1.999 is 1 hour and 60 minutes.
std::string moonlessHoursText(float moonlessHours);

}  // namespace lumenquest::widgets
