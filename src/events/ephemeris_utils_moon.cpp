#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "ephemeris/constants.h"
#include "ephemeris/pt_phases_of_the_moon.h"
#include "events/ephemeris_utils.h"
#include "platform/assertion.h"
#include "platform/localized_strings.h"
#include "platform/ns_calendar.h"
#include "platform/services.h"

namespace lumenquest::events {

namespace {

using ephemeris::kMjdAlwaysInvisible;
using ephemeris::kMjdCircumpolar;
using ephemeris::kMjdNoRiseOrSet;
using ephemeris::MoonPhaseType;
using ephemeris::PtDateTime;
using ephemeris::SearchEvent;
using platform::NSCalendar;
using platform::NSDate;
using platform::NSDateComponents;
using platform::stringWithFormat;

constexpr double kHoursPerDay = 24.0;
constexpr double kMoonRadiusKm = 1738.0;
/// The Moon's mean angular diameter, degrees.
constexpr double kMeanAngularDiameter = 0.517836;
/// How near to a principal phase its illumination is exact, seconds.
constexpr float kPhaseInstantTolerance = 150.0f;

/// The principal phases from the first of a month, local time, on.
ephemeris::PtMoonPhases PhasesFromFirstOfMonth(int year, int month) {
  NSDateComponents first;
  first.year = year;
  first.month = month;
  const PtDateTime ptFirst = NSCalendar::cachedCalendar().dateFromComponents(first).ptDateTime();
  ephemeris::PtMoonPhases phases;
  ephemeris::PtPhasesOfTheMoon().CalculatePhasesForMonth(ptFirst, &phases);
  return phases;
}

/// The principal phase that falls on the local day of the date; the last one when several do.
const ephemeris::PtMoonPhaseWithDate* PhaseOnDay(const ephemeris::PtMoonPhases& phases,
                                                 NSDate date) {
  NSCalendar& calendar = NSCalendar::cachedCalendar();
  const NSDateComponents wanted = calendar.componentsFromDate(date);
  const ephemeris::PtMoonPhaseWithDate* found = nullptr;
  for (const auto& phase : phases) {
    const NSDateComponents local =
        calendar.componentsFromDate(NSDate::dateWithPtDateTime(phase->date));
    if (local.day == wanted.day && local.month == wanted.month) found = phase.get();
  }
  return found;
}

/// Illumination at the very instant of a principal phase.
double PrincipalIllumination(MoonPhaseType phase) {
  switch (phase) {
    case MoonPhaseType::NewMoon:
      return 0.0;
    case MoonPhaseType::FullMoon:
      return 1.0;
    default:
      return 0.5;
  }
}

/// The engine's times of a local day's start.
struct DayStart {
  explicit DayStart(NSDate start) : dayOfMonth(start.dayValue()) {
    const PtDateTime ptStart = start.ptDateTime();
    mjd = ptStart.ModifiedJulianDay();
    deltaT = ptStart.DeltaT();
  }

  double mjd;
  double deltaT;
  int dayOfMonth;
};

}  // namespace

std::optional<std::string> EphemerisUtils::moonPhaseToString(int phase) {
  static constexpr std::array<const char*, 8> keys{
      "phase_new_moon",       "phase_first_quarter",   "phase_full_moon",
      "phase_last_quarter",   "phase_waxing_crescent", "phase_waxing_gibbous",
      "phase_waning_gibbous", "phase_waning_crescent"};
  if (phase < 0 || phase >= static_cast<int>(keys.size())) return std::nullopt;
  return platform::localizedString(keys[static_cast<std::size_t>(phase)],
                                   platform::kTableEphemeris);
}

MoonPhaseResult EphemerisUtils::moonPhaseDataForMjd(double mjd, double withDeltaT,
                                                    ephemeris::PtSun& sun, ephemeris::PtMoon& moon,
                                                    NSDate currentDate) {
  return moonPhaseDataForMjd(mjd, withDeltaT, sun, moon, currentDate, true);
}

MoonPhaseResult EphemerisUtils::moonPhaseDataForMjd(double mjd, double withDeltaT,
                                                    ephemeris::PtSun& sun, ephemeris::PtMoon& moon,
                                                    NSDate currentDate, bool withHighPrecision) {
  sun.CalculateEclipticEquatorialAndHorizontalPositions(mjd, withDeltaT, true);
  moon.CalculateEclipticEquatorialAndHorizontalPositions(mjd, withDeltaT, true);

  ephemeris::PtMoonPhases phases;
  const ephemeris::PtMoonPhaseWithDate* principal = nullptr;
  MoonPhaseResult result;
  result.mjdPhase = 0.0;
  if (withHighPrecision) {
    const NSDateComponents today = NSCalendar::gmtCachedCalendar().componentsFromDate(currentDate);
    phases = PhasesFromFirstOfMonth(today.year, today.month);
    principal = PhaseOnDay(phases, currentDate);
    result.mjdPhase = principal ? principal->date.ModifiedJulianDay() : kMjdNoRiseOrSet;
  }

  ephemeris::Vector3D moonEcliptic = moon.eclipticPosition();
  ephemeris::Vector3D moonEquatorial = moon.equatorialPosition();
  ephemeris::Vector3D sunEcliptic = sun.eclipticPosition();
  ephemeris::Vector3D sunEquatorial = sun.equatorialPosition();
  ephemeris::MoonPhase phase;
  moon.CalculatePhase(&moonEcliptic, &moonEquatorial, &sunEcliptic, &sunEquatorial,
                      moon.hourAngle(), &phase);

  constexpr double kQuarterTurn = ephemeris::kPi / 2.0;
  const double zenithAngle =
      (phase.waxing ? -kQuarterTurn : kQuarterTurn) - phase.brightLimbZenithAngle;
  double illumination = phase.illumination;
  result.phase = static_cast<int>(phase.phaseType);
  if (principal) {
    result.phase = static_cast<int>(principal->type);
    // Seconds in single precision, steps of 64 s in this age.
    const auto phaseSeconds = static_cast<float>(mjdToTimeInterval(result.mjdPhase));
    const auto currentSeconds = static_cast<float>(currentDate.timeIntervalSinceReferenceDate());
    if (std::fabs(phaseSeconds - currentSeconds) <= kPhaseInstantTolerance) {
      illumination = PrincipalIllumination(principal->type);
    }
  }

  result.phaseIllumination = static_cast<float>(illumination);
  result.zenithAngle = static_cast<float>(zenithAngle);
  result.isLimbWaning = !phase.waxing;
  result.moonElevation = static_cast<float>(moon.horizontalPosition().theta);
  result.sunElevation = static_cast<float>(sun.horizontalPosition().theta);
  return result;
}

std::string EphemerisUtils::moonlessHoursText(float hours) {
  LUMENQUEST_ASSERT(std::isfinite(hours) && std::fabs(hours) < 9.0e18f);
  const auto wholeHours = static_cast<std::int64_t>(hours);
  const auto minutes =
      static_cast<std::int64_t>(std::round((hours - static_cast<float>(wholeHours)) * 60.0f));
  const std::string hourUnit = platform::localizedString("unit_abbr_hour", platform::kTableCommon);
  const std::string minuteUnit =
      platform::localizedString("unit_abbr_minute", platform::kTableCommon);

  if (wholeHours == 0 && minutes == 0) return "0" + hourUnit;
  if (wholeHours == 0) return stringWithFormat("%d%@", {minutes, minuteUnit});
  if (minutes == 0) return stringWithFormat("%d%@", {wholeHours, hourUnit});
  return stringWithFormat("%d%@ %d%@", {wholeHours, hourUnit, minutes, minuteUnit});
}

float EphemerisUtils::moonAgeAt(NSDate date) {
  const double mjdNow = date.modifiedJulianDay();
  int year = date.yearValue();
  int month = date.monthValue();
  double newMoon = ephemeris::getNewMoonMjd(PhasesFromFirstOfMonth(year, month), mjdNow);
  // A February can be without a new Moon, so that one month back is not always enough.
  while (!(newMoon < mjdNow)) {
    month -= 1;
    if (month == 0) {
      month = 12;
      year -= 1;
    }
    newMoon = ephemeris::getNewMoonMjd(PhasesFromFirstOfMonth(year, month), mjdNow);
  }
  return static_cast<float>(mjdNow - newMoon);
}

double EphemerisUtils::moonPercentageFromMeanAngularDiameterAtDistance(double distance) {
  const double diameter = 2.0 * std::atan(kMoonRadiusKm / distance) * ephemeris::kRadiansToDegrees;
  return (diameter - kMeanAngularDiameter) / kMeanAngularDiameter;
}

void EphemerisUtils::calculateAstronomicalTwilight(ephemeris::PtSun& sun, double atMjd,
                                                   double deltaT, int localDay,
                                                   double* mjdAstTwStart, double* mjdAstTwEnd,
                                                   double* mjdAstTwEnd2) {
  *mjdAstTwEnd2 = kMjdAlwaysInvisible;
  sun.FindEvents(SearchEvent::AstronomicalTwilight, atMjd, deltaT, mjdAstTwStart, mjdAstTwEnd);
  // Dusk in the day's first hours: the evening may bring another one before midnight.
  if (*mjdAstTwEnd < *mjdAstTwStart) {
    double start = 0.0;
    double end = 0.0;
    sun.FindEvents(SearchEvent::AstronomicalTwilight, atMjd + 0.5, deltaT, &start, &end);
    if (NSDate::dateFromModifiedJulianDay(end).dayValue() == localDay) *mjdAstTwEnd2 = end;
  }
}

float EphemerisUtils::moonlessHoursForNightAtDate(NSDate date, ephemeris::PtSun& sun,
                                                  ephemeris::PtMoon& moon) {
  const NSDate todayStart = NSDate::dateWithStartDateTime(date);
  const DayStart today(todayStart);
  const DayStart tomorrow(todayStart.dateByAddingNumberOfDays(1));

  double sunRise = 0.0;
  double sunSet = 0.0;
  double dawn = 0.0;
  double dusk = 0.0;
  double secondDusk = 0.0;

  sun.FindEvents(SearchEvent::RiseSet, today.mjd, today.deltaT, &sunRise, &sunSet);
  if (sunRise == kMjdCircumpolar) return 0.0f;
  calculateAstronomicalTwilight(sun, today.mjd, today.deltaT, today.dayOfMonth, &dawn, &dusk,
                                &secondDusk);
  double nightStart = kMjdAlwaysInvisible;
  if (drawEventAtMjd(dusk)) {
    nightStart = secondDusk > dusk && secondDusk != kMjdAlwaysInvisible ? secondDusk : dusk;
    // A dusk before the middle of the day began the night that is over.
    const double middleOfDay = today.mjd + (tomorrow.mjd - today.mjd) * 0.5;
    if (nightStart < middleOfDay) nightStart = kMjdAlwaysInvisible;
  }

  sun.FindEvents(SearchEvent::RiseSet, tomorrow.mjd, tomorrow.deltaT, &sunRise, &sunSet);
  if (sunRise == kMjdCircumpolar) return 0.0f;
  calculateAstronomicalTwilight(sun, tomorrow.mjd, tomorrow.deltaT, tomorrow.dayOfMonth, &dawn,
                                &dusk, &secondDusk);
  const double nightEnd = dawn;
  if (nightStart == kMjdAlwaysInvisible) {
    nightStart = dusk;
    if (!(nightStart < nightEnd)) return 0.0f;
  }
  if (!drawEventAtMjd(nightEnd)) {
    platform::Services::current().log().write("Night start but no end");
    return 0.0f;
  }

  double moonRiseToday = 0.0;
  double moonSetToday = 0.0;
  double moonRiseTomorrow = 0.0;
  double moonSetTomorrow = 0.0;
  moon.FindEvents(SearchEvent::RiseSet, today.mjd, today.deltaT, &moonRiseToday, &moonSetToday);
  moon.FindEvents(SearchEvent::RiseSet, tomorrow.mjd, tomorrow.deltaT, &moonRiseTomorrow,
                  &moonSetTomorrow);
  if (moonRiseToday == kMjdCircumpolar) return 0.0f;
  double hours = (nightEnd - nightStart) * kHoursPerDay;
  if (moonRiseToday == kMjdAlwaysInvisible) return static_cast<float>(hours);

  std::vector<MoonRiseSet> spans;
  addMoonRiseSets(spans, moonRiseToday, moonSetToday);
  if (!spans.empty() && spans.back().mjdSet == kMjdNoRiseOrSet) {
    spans.back().mjdSet = moonSetTomorrow;
    spans.push_back({moonRiseTomorrow, kMjdNoRiseOrSet});
  } else {
    addMoonRiseSets(spans, moonRiseTomorrow, moonSetTomorrow);
  }
  for (const MoonRiseSet& span : spans) {
    hours -= nightHoursAffectedWithMoon(span, nightStart, nightEnd);
  }
  return static_cast<float>(hours);
}

void EphemerisUtils::addMoonRiseSets(std::vector<MoonRiseSet>& list, double forMjdRise,
                                     double andMjdSet) {
  const bool rises = drawEventAtMjd(forMjdRise);
  const bool sets = drawEventAtMjd(andMjdSet);
  if (rises && sets && forMjdRise < andMjdSet) {
    list.push_back({forMjdRise, andMjdSet});
    return;
  }
  if (sets) list.push_back({kMjdNoRiseOrSet, andMjdSet});
  if (rises) list.push_back({forMjdRise, kMjdNoRiseOrSet});
}

double EphemerisUtils::nightHoursAffectedWithMoon(const MoonRiseSet& moon, double nightStart,
                                                  double nightEnd) {
  const double r = moon.mjdRise;
  const double s = moon.mjdSet;
  const double S = nightStart;
  const double E = nightEnd;
  const auto hours = [](double from, double to) { return (to - from) * kHoursPerDay; };

  if (r == kMjdNoRiseOrSet) {
    if (s <= S) return 0.0;
    return s >= E ? hours(S, E) : hours(S, s);
  }
  if (s == kMjdNoRiseOrSet) {
    if (r > E) return 0.0;
    return r <= S ? hours(S, E) : hours(r, E);
  }
  if (r >= S && s <= E) return hours(r, s);
  if (r <= S && s < E && s <= S) return 0.0;
  if (r <= S && s >= E) return hours(S, E);
  if (r >= E && s >= E) return 0.0;
  if (r <= S && s <= E) return hours(S, s);
  if (r >= S && s >= E) return hours(r, E);
  platform::Services::current().log().write(stringWithFormat(
      "Unknown case for moonless night hours. Moonrise: %.2f, Moonset: %.2f, Night starts: %.2f, "
      "Night ends: %.2f",
      {r, s, S, E}));
  return 0.0;
}

}  // namespace lumenquest::events
