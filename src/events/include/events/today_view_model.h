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
  void calculateData();
  void calculateNightData();

  std::string calculateMoonPhase(ephemeris::PtMoon& moon, ephemeris::PtSun& sun);
  void calculateGalacticCenterVisibilityWithSun(ephemeris::PtSun& sun);
  void calculateCurrentLightForSun(ephemeris::PtSun& sun);

  /// The place's address, set by the caller.
  std::string postalAddress;
  std::shared_ptr<BodyInfoEvent> nextEvent;
  std::optional<MoonPhaseResult> moonPhaseData;
};

}  // namespace lumenquest::events
