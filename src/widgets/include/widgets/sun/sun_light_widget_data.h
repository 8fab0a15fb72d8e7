#pragma once

#include <string>

#include "widgets/location/location_widget_data.h"

namespace lumenquest::widgets {

/// Stands for an interval that the day does not have.
inline constexpr const char* kNoInterval = "--";

/// What the Sun widgets show. Instants are MJD (UT); angles are degrees.
struct SunLightWidgetData {
  SunLightWidgetData() = default;
  explicit SunLightWidgetData(const RecordSources& sources);

  LocationWidgetData locationData;
  /// The next local midnight, the end of the day shown.
  double mjdTomorrowAt0 = 0.0;
  double mjdRise = 0.0;
  double mjdSet = 0.0;
  float sunElevation = 0.0f;
  /// The name of the light now, in the user's language.
  std::string lightType;
  /// The next change of light; 0 or less when there is none.
  double nextEventMjd = 0.0;
  std::string goldenHourInterval;
  std::string blueHourInterval;
  std::string astronomicalTwilightInterval;
  /// The name of the light that begins then; empty when there is none.
  std::string nextEventName;

  bool operator==(const SunLightWidgetData&) const = default;
};

}  // namespace lumenquest::widgets
