#pragma once

#include <string>

#include "widgets/location/location_widget_data.h"

namespace lumenquest::widgets {

/// What the Moon widgets show. Instants are MJD (UT).
struct MoonWidgetData {
  MoonWidgetData() = default;
  explicit MoonWidgetData(const RecordSources& sources);

  LocationWidgetData locationData;
  double mjdTomorrowAt0 = 0.0;
  double mjdRise = 0.0;
  double mjdSet = 0.0;
  /// The phase's text, with the illuminated fraction.
  std::string moonPhaseString;
  /// The illuminated fraction, 0 to 1.
  float moonPhase = 0.0f;
  /// Degrees by which the drawing is turned: the middle of the lit limb stands at −90° − this angle
  /// from the zenith for a waxing Moon, at 90° − this angle for a waning one, counter-clockwise.
  float zenithAngle = 0.0f;
  bool isMoonWaning = false;
  bool isSupermoon = false;
  /// Degrees.
  float moonElevation = 0.0f;
  float sunElevation = 0.0f;
  /// The side of the shadow: at the moment itself, which isMoonWaning is not on the days of new and
  /// full Moon.
  bool isLimbWaning = false;

  bool operator==(const MoonWidgetData&) const = default;
};

}  // namespace lumenquest::widgets
