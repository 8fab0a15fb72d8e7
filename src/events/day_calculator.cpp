#include "events/day_calculator.h"

#include <algorithm>
#include <array>

#include "ephemeris/constants.h"
#include "events/apogee_perigee.h"
#include "events/ephemeris_utils.h"
#include "platform/localized_strings.h"

namespace lumenquest::events {

namespace {

using ephemeris::kMjdAlwaysInvisible;
using ephemeris::kMjdCircumpolar;
using ephemeris::SearchEvent;
using platform::kTableEphemeris;
using platform::localizedString;
using platform::NSDate;

/// Days.
constexpr double kFourHours = 1.0 / 6.0;

/// Which light begins at which crossing.
struct LightChange {
  double Twilights::*mjd;
  const char* nameKey;
};

constexpr std::array<LightChange, 10> kLightChanges{{
    {&Twilights::mjdAstronomicalTwStart, "light_astronomical"},
    {&Twilights::mjdAstronomicalTwEnd, "light_nighttime"},
    {&Twilights::mjdNautTwStart, "light_nautical"},
    {&Twilights::mjdNautTwEnd, "light_astronomical"},
    {&Twilights::mjdCivilTwStart, "twilight_blue_hour"},
    {&Twilights::mjdCivilTwEnd, "light_nautical"},
    {&Twilights::mjdBlueHourStart, "twilight_blue_hour"},
    {&Twilights::mjdBlueHourEnd, "twilight_golden_hour"},
    {&Twilights::mjdGoldenHourStart, "twilight_golden_hour"},
    {&Twilights::mjdGoldenHourEnd, "light_daytime"},
}};

}  // namespace

void DayCalculator::setCurrentLocation(const std::optional<platform::CLLocation>& location) {
  currentLocation_ = location;
  if (!location) return;
  currentPosition_.latitude = location->coordinate.latitude;
  currentPosition_.CalcObserverCoords();
  currentPosition_.longitude = location->coordinate.longitude;
}

void DayCalculator::updateDates() {
  currentDate_ = NSDate::date();
  mjdNow_ = currentDate_.modifiedJulianDay();

  const ephemeris::PtDateTime todayAt0 = NSDate::dateWithStartDateTime(currentDate_).ptDateTime();
  mjdTodayAt0 = todayAt0.ModifiedJulianDay();
  deltaT_ = todayAt0.DeltaT();
  mjdTodayAtNoon_ = NSDate::dateWithNoonDateTime(currentDate_).modifiedJulianDay();

  const auto startOfDay = [this](int daysFromToday) {
    const NSDate day = currentDate_.dateByAddingNumberOfDays(daysFromToday);
    return NSDate::dateWithStartDateTime(day).modifiedJulianDay();
  };
  mjdTomorrowAt0 = startOfDay(1);
  mjdYesterdayAt0_ = startOfDay(-1);
}

SunEvent DayCalculator::sunEventFromTwilight(const Twilights& t) {
  SunEvent day;
  day.civilTwilight = TwilightEvent{t.mjdCivilTwStart, t.mjdCivilTwEnd};
  day.nauticalTwilight = TwilightEvent{t.mjdNautTwStart, t.mjdNautTwEnd};
  day.astronomicalTwilight = TwilightEvent{t.mjdAstronomicalTwStart, t.mjdAstronomicalTwEnd};
  if (t.mjdAstronomicalTwEnd2 != kMjdAlwaysInvisible) {
    day.astronomicalTwilight2 = TwilightEvent{kMjdAlwaysInvisible, t.mjdAstronomicalTwEnd2};
  }
  day.goldenHour = TwilightEvent{t.mjdGoldenHourStart, t.mjdGoldenHourEnd};
  day.blueHour = TwilightEvent{t.mjdBlueHourStart, t.mjdBlueHourEnd};
  return day;
}

bool DayCalculator::addEventWithMjd(double mjd) { return EphemerisUtils::drawEventAtMjd(mjd); }

void DayCalculator::calculateRiseSetForBody(ephemeris::PtPlanet& body, bool isSun, double* rise,
                                            double* set) const {
  body.FindEvents(SearchEvent::RiseSet, mjdTodayAt0, deltaT_, rise, set);

  struct RiseSet {
    double rise;
    double set;
  };
  std::optional<RiseSet> tomorrow;
  const auto lookAtTomorrow = [&]() -> const RiseSet& {
    if (!tomorrow) {
      tomorrow.emplace();
      body.FindEvents(SearchEvent::RiseSet, mjdTomorrowAt0, deltaT_, &tomorrow->rise,
                      &tomorrow->set);
    }
    return *tomorrow;
  };
  const auto isLongPast = [&](double mjd) { return mjd < mjdNow_ - kFourHours; };

  if (*rise != kMjdCircumpolar) {
    const bool isPast =
        isSun ? *rise < mjdTodayAtNoon_ && mjdTodayAtNoon_ < mjdNow_ : isLongPast(*rise);
    if (!addEventWithMjd(*rise) || isPast) {
      const double next = lookAtTomorrow().rise;
      if (addEventWithMjd(next)) *rise = next;
    }
  }
  if (*set != kMjdCircumpolar) {
    const bool isPast = !isSun && isLongPast(*set);
    if (!addEventWithMjd(*set) || isPast) {
      const double next = lookAtTomorrow().set;
      if (addEventWithMjd(next)) *set = next;
    }
  }
}

void DayCalculator::calculateSunMoonRiseSetWithSun(ephemeris::PtSun* sun,
                                                   ephemeris::PtMoon* andMoon) {
  if (sun != nullptr) calculateRiseSetForBody(*sun, true, &mjdSunRise, &mjdSunSet);
  if (andMoon != nullptr) calculateRiseSetForBody(*andMoon, false, &mjdMoonRise, &mjdMoonSet);
}

std::shared_ptr<BodyInfoEvent> DayCalculator::calculateNextLightWithSun(
    ephemeris::PtSun&, const Twilights& twilights) const {
  std::vector<LightChange> changes;
  for (const LightChange& change : kLightChanges) {
    if (addEventWithMjd(twilights.*change.mjd)) changes.push_back(change);
  }
  std::stable_sort(changes.begin(), changes.end(), [&](const LightChange& a, const LightChange& b) {
    return twilights.*a.mjd < twilights.*b.mjd;
  });
  const auto next = std::find_if(changes.begin(), changes.end(), [&](const LightChange& change) {
    return twilights.*change.mjd > mjdNow_;
  });
  if (next == changes.end()) return nullptr;
  return std::make_shared<BodyInfoEvent>(twilights.*next->mjd,
                                         localizedString(next->nameKey, kTableEphemeris));
}

std::shared_ptr<BodyInfoEvent> DayCalculator::calculateNextLightWithSun(
    ephemeris::PtSun& sun) const {
  std::shared_ptr<BodyInfoEvent> next;
  if (todayTwilights_) next = calculateNextLightWithSun(sun, *todayTwilights_);
  if (!next && tomorrowTwilights_) next = calculateNextLightWithSun(sun, *tomorrowTwilights_);
  return next;
}

void DayCalculator::dropTwilights() {
  todayTwilights_.reset();
  yesterdayTwilights_.reset();
  tomorrowTwilights_.reset();
}

void DayCalculator::calculateTwilights(ephemeris::PtSun& sun) {
  todayTwilights_ = Twilight::calculateTwilightsForMjd(mjdTodayAt0, deltaT_, sun);
  yesterdayTwilights_ = Twilight::calculateTwilightsForMjd(mjdYesterdayAt0_, deltaT_, sun);
  tomorrowTwilights_ = Twilight::calculateTwilightsForMjd(mjdTomorrowAt0, deltaT_, sun);
}

void DayCalculator::calculateIntervals() {
  const SunEvent today = sunEventFromTwilight(*todayTwilights_);
  const SunEvent yesterday = sunEventFromTwilight(*yesterdayTwilights_);
  const SunEvent tomorrow = sunEventFromTwilight(*tomorrowTwilights_);
  const auto interval = [&](LightType type) {
    return today.currentEventForLightType(type, mjdNow_, yesterday, tomorrow, mjdTodayAt0,
                                          mjdTomorrowAt0);
  };
  goldenHourInterval = interval(LightType::LightTypeGoldenHour);
  blueHourInterval = interval(LightType::LightTypeBlueHour);
  astronomicalTwilightInterval = interval(LightType::LightTypeAstronomicalTwilight);
}

bool DayCalculator::calculateGalacticCenterWindow(ephemeris::PtMilkyWay& milkyWay,
                                                  ephemeris::PtSun& sun, NSDate date) {
  const MilkyWayEvent event = MilkyWay().calculateGalacticCenterVisibility(milkyWay, sun, date);
  const bool visible = event.mjdVisibilityFrom != kMjdAlwaysInvisible;
  if (visible) {
    const auto signedTilt = [&](double mjd) {
      ephemeris::Vector3D centre;
      ephemeris::Vector3D band;
      double tilt = 0.0;
      double highestAzimuth = 0.0;
      double result = 0.0;
      milkyWay.CalculateMilkyWayPosition(mjd, deltaT_, &centre, &band, &tilt, &highestAzimuth,
                                         &result);
      return result;
    };
    gcVisibilityStartAngle = signedTilt(event.mjdVisibilityFrom);
    gcVisibilityEndAngle = signedTilt(event.mjdVisibilityTo);
  }
  mjdGcVisibilityStart = visible ? event.mjdVisibilityFrom : kMjdAlwaysInvisible;
  mjdGcVisibilityEnd = visible ? event.mjdVisibilityTo : kMjdAlwaysInvisible;
  return visible;
}

bool DayCalculator::isSupermoonPhase(const MoonPhaseResult& phase, ephemeris::PtMoon& moon) const {
  if (phase.phase != static_cast<int>(ephemeris::MoonPhaseType::FullMoon)) return false;
  moon.CalculateEclipticEquatorialAndHorizontalPositions(phase.mjdPhase, deltaT_, true);
  return ApogeePerigee::isFullMoonDateASupermoonDay(
      NSDate::dateFromModifiedJulianDay(phase.mjdPhase), moon.horizontalPosition().r);
}

std::string DayCalculator::phaseText(const MoonPhaseResult& phase, bool isSupermoon) {
  if (!isSupermoon) return phase.phaseString();
  return phase.phaseStringWithPhaseName(localizedString("phase_supermoon", kTableEphemeris));
}

}  // namespace lumenquest::events
