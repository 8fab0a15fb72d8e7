#pragma once

#include <optional>
#include <string>

#include "events/day_calculator.h"
#include "platform/ns_time_zone.h"

namespace lumenquest::events {

/// What calculateData() is to compute.
enum WidgetData : unsigned {
  WidgetDataSunLight = 1,        ///< current light and next change
  WidgetDataSunIntervals = 2,    ///< as before, with the interval texts
  WidgetDataMoon = 4,            ///< moonrise, moonset and phase
  WidgetDataGalacticCenter = 8,  ///< visibility and moonless hours
};

/// Turns a place and the present moment into the values that the widgets show.
///
/// Set the location and, where it is not the device's, its time zone; call calculateData(); read
/// the properties. Values that were not asked for keep what an earlier call left. Not for two
/// threads at once: calculateData() sets the zone of the shared formatters (and leaves it so) and
/// of the shared calendar (and gives its own back).
class WidgetAstrolib final : public DayCalculator {
 public:
  void setCurrentTimeZone(const std::optional<platform::NSTimeZone>& zone) {
    currentTimeZone = zone;
  }

  /// `flags`: a sum of WidgetData. Without a location it only drops the crossings of an earlier
  /// call.
  void calculateData(unsigned flags);

  /// Fills sunElevation and currentLightType for now.
  void calculateCurrentLightForSun(ephemeris::PtSun& sun);
  /// Fills the phase's properties and returns its text.
  std::optional<std::string> calculateMoonPhase(ephemeris::PtMoon& moon, ephemeris::PtSun& sun);
  /// Fills tonight's window and the band's tilt at its ends; never looks for a later date.
  void calculateGalacticCenterVisibilityWithSun(ephemeris::PtSun& sun);

  /// Time of the instant, with a mark when it lies after today.
  std::string stringForMjd(double mjd) const;

  /// Absent: the device's.
  std::optional<platform::NSTimeZone> currentTimeZone;
  /// 0 when no change of light is ahead.
  double nextEventMjd = 0.0;
  std::optional<std::string> nextEventName;
  float phaseIllumination = 0.0f;
  /// Radians.
  float zenithAngle = 0.0f;
  /// Degrees.
  float moonElevation = 0.0f;
  float sunElevation = 0.0f;
  bool isMoonWaning = false;
  bool isSupermoon = false;
  float moonlessHours = 0.0f;
  /// At the moment itself, which isMoonWaning is not on the days of new and full Moon.
  bool isLimbWaning = false;
};

}  // namespace lumenquest::events
