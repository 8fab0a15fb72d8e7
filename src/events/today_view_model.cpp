#include "events/today_view_model.h"

#include "events/ephemeris_utils.h"

namespace lumenquest::events {

void TodayViewModel::calculateData() {
  dropTwilights();
  if (!currentLocation()) return;
  updateDates();
  ephemeris::PtSun sun(currentPosition_);
  ephemeris::PtMoon moon(currentPosition_);
  calculateSunMoonRiseSetWithSun(&sun, &moon);
  calculateTwilights(sun);
  nextEvent = calculateNextLightWithSun(sun);
  moonPhase = calculateMoonPhase(moon, sun);
  calculateIntervals();
  calculateCurrentLightForSun(sun);
}

void TodayViewModel::calculateNightData() {
  dropTwilights();
  if (!currentLocation()) return;
  updateDates();
  ephemeris::PtSun sun(currentPosition_);
  calculateGalacticCenterVisibilityWithSun(sun);
}

std::string TodayViewModel::calculateMoonPhase(ephemeris::PtMoon& moon, ephemeris::PtSun& sun) {
  moonPhaseData = EphemerisUtils::moonPhaseDataForMjd(mjdNow_, deltaT_, sun, moon, currentDate_);
  return phaseText(*moonPhaseData, isSupermoonPhase(*moonPhaseData, moon));
}

void TodayViewModel::calculateGalacticCenterVisibilityWithSun(ephemeris::PtSun& sun) {
  ephemeris::PtMilkyWay milkyWay(currentPosition_);
  if (calculateGalacticCenterWindow(milkyWay, sun, currentDate_)) {
    dateNextVisiblity.reset();
  } else {
    dateNextVisiblity = MilkyWay().nextDateGalacticCenterIsVisible(milkyWay, sun, currentDate_);
  }
}

void TodayViewModel::calculateCurrentLightForSun(ephemeris::PtSun& sun) {
  sun.CalculateEclipticEquatorialAndHorizontalPositions(mjdNow_, deltaT_, true);
  currentLightType = EphemerisUtils::lightTypeForSunElevation(sun.horizontalPosition().theta);
}

}  // namespace lumenquest::events
