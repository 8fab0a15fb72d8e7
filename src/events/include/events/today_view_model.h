#pragma once

#include <memory>
#include <optional>
#include <string>

#include "events/day_calculator.h"

namespace lumenquest::events {

/// A place's day for a summary view: the values of WidgetAstrolib in one go, the records behind
/// them whole, and the next date with the galactic centre when tonight is without.
///
/// It takes the shared calendar and formatters as they are; the caller gives them the place's zone.
class TodayViewModel final : public DayCalculator {
 public:
  /// The day: rise and set, light, intervals, phase. Without a location nothing but the crossings
  /// of an earlier call changes; the galactic centre's values stay as they are.
  void calculateData();
  /// The night: the galactic centre's window, or the next date that has one.
  void calculateNightData();

  /// Fills moonPhaseData and returns the phase's text.
  std::string calculateMoonPhase(ephemeris::PtMoon& moon, ephemeris::PtSun& sun);
  /// Tonight's window, else dateNextVisiblity (absent when there is none within 180 days).
  void calculateGalacticCenterVisibilityWithSun(ephemeris::PtSun& sun);
  /// Fills currentLightType from the Sun's apparent elevation now.
  void calculateCurrentLightForSun(ephemeris::PtSun& sun);

  /// The place's address, set by the caller.
  std::string postalAddress;
  /// The next change of light; null when none is ahead.
  std::shared_ptr<BodyInfoEvent> nextEvent;
  /// Absent until the day was computed.
  std::optional<MoonPhaseResult> moonPhaseData;
};

}  // namespace lumenquest::events
