#include "events/widget_astrolib.h"

#include "events/ephemeris_utils.h"
#include "platform/calendar_zone.h"
#include "platform/formatters.h"
#include "platform/localized_strings.h"

namespace lumenquest::events {

using platform::NSTimeZone;

void WidgetAstrolib::calculateData(unsigned flags) {
  dropTwilights();
  if (!currentLocation()) return;

  const NSTimeZone zone = currentTimeZone ? *currentTimeZone : NSTimeZone::localTimeZone();
  platform::Formatters::sharedInstance().setTimeZone(zone);
  const platform::CalendarZone calendarZone(zone);
  updateDates();
  ephemeris::PtSun sun(currentPosition_);
  ephemeris::PtMoon moon(currentPosition_);

  if (flags & WidgetDataGalacticCenter) {
    calculateGalacticCenterVisibilityWithSun(sun);
    moonlessHours = EphemerisUtils::moonlessHoursForNightAtDate(currentDate_, sun, moon);
  }
  const bool wantsMoon = (flags & WidgetDataMoon) != 0;
  const bool wantsIntervals = (flags & WidgetDataSunIntervals) != 0;
  const bool wantsLight = wantsIntervals || (flags & WidgetDataSunLight) != 0;
  if (wantsLight || wantsMoon) {
    calculateSunMoonRiseSetWithSun(&sun, wantsMoon ? &moon : nullptr);
  }
  if (wantsMoon) moonPhase = calculateMoonPhase(moon, sun);
  if (wantsLight) {
    calculateTwilights(sun);
    if (wantsIntervals) calculateIntervals();
    const std::shared_ptr<BodyInfoEvent> next = calculateNextLightWithSun(sun);
    nextEventMjd = next ? next->mjd() : 0.0;
    nextEventName = next ? std::optional(next->name) : std::nullopt;
    calculateCurrentLightForSun(sun);
  }
  positionsComputed_ = sun.positionsComputed() + moon.positionsComputed();
}

void WidgetAstrolib::calculateCurrentLightForSun(ephemeris::PtSun& sun) {
  sun.CalculateEclipticEquatorialAndHorizontalPositions(mjdNow_, deltaT_, true);
  sunElevation = static_cast<float>(sun.horizontalPosition().theta);
  currentLightType = EphemerisUtils::lightTypeForSunElevation(static_cast<double>(sunElevation));
}

std::optional<std::string> WidgetAstrolib::calculateMoonPhase(ephemeris::PtMoon& moon,
                                                              ephemeris::PtSun& sun) {
  const MoonPhaseResult phase =
      EphemerisUtils::moonPhaseDataForMjd(mjdNow_, deltaT_, sun, moon, currentDate_);
  isSupermoon = isSupermoonPhase(phase, moon);
  phaseIllumination = phase.phaseIllumination;
  zenithAngle = phase.zenithAngle;
  sunElevation = phase.sunElevation;
  moonElevation = phase.moonElevation;
  isMoonWaning = phase.isWaning();
  isLimbWaning = phase.isLimbWaning;
  return phaseText(phase, isSupermoon);
}

void WidgetAstrolib::calculateGalacticCenterVisibilityWithSun(ephemeris::PtSun& sun) {
  ephemeris::PtMilkyWay milkyWay(currentPosition_);
  calculateGalacticCenterWindow(milkyWay, sun, currentDate_);
  dateNextVisiblity.reset();
}

std::string WidgetAstrolib::stringForMjd(double mjd) const {
  std::string text = EphemerisUtils::mjdToString(mjd);
  if (mjd >= mjdTomorrowAt0) {
    text += ' ' + platform::localizedString("event_one_day_plus", platform::kTableEphemeris);
  }
  return text;
}

}  // namespace lumenquest::events
