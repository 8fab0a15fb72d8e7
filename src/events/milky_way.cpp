#include "events/milky_way.h"

#include "ephemeris/constants.h"
#include "ephemeris/pt_date_time.h"
#include "events/twilight.h"

namespace lumenquest::events {

namespace {

using ephemeris::kMjdAlwaysInvisible;
using ephemeris::kMjdCircumpolar;
using ephemeris::kMjdNoRiseOrSet;
using ephemeris::PtDateTime;
using platform::NSDate;

/// Degrees north beyond which no date is searched for.
constexpr double kNorthernLimit = 58.0;
constexpr int kDaysSearched = 180;

PtDateTime StartOfDay(NSDate date) { return NSDate::dateWithStartDateTime(date).ptDateTime(); }

}  // namespace

MilkyWayEvent MilkyWay::calculateGalacticCenterVisibility(ephemeris::PtMilkyWay& milkyWay,
                                                          ephemeris::PtSun& withSun,
                                                          NSDate atDate) const {
  const double mjdNow = atDate.modifiedJulianDay();
  const PtDateTime today = StartOfDay(atDate);
  const double deltaT = today.DeltaT();
  const auto twilightsOfDay = [&](int daysFromToday) {
    const PtDateTime start =
        daysFromToday == 0 ? today : StartOfDay(atDate.dateByAddingNumberOfDays(daysFromToday));
    return Twilight::calculateTwilightsForMjd(start.ModifiedJulianDay(), deltaT, withSun);
  };

  const Twilights t = twilightsOfDay(0);
  const double dawn = t.mjdAstronomicalTwStart;
  const double dusk = t.mjdAstronomicalTwEnd;
  const double secondDusk = t.mjdAstronomicalTwEnd2;

  MilkyWayEvent event;
  event.mjdVisibilityFrom = kMjdAlwaysInvisible;
  event.mjdVisibilityTo = kMjdAlwaysInvisible;
  if (dusk == kMjdAlwaysInvisible || dawn == kMjdCircumpolar) return event;

  double nightStart = 0.0;
  double nightEnd = 0.0;
  if (t.mjdNautTwStart <= mjdNow) {
    // Since the morning's nautical dawn the night wanted is the coming one.
    const Twilights t1 = twilightsOfDay(1);
    nightEnd = t1.mjdAstronomicalTwStart;
    nightStart = dusk < secondDusk && secondDusk != kMjdAlwaysInvisible ? secondDusk : dusk;
    // Tomorrow's dusk in tomorrow's first hours is tonight's.
    if (nightEnd != kMjdNoRiseOrSet && t1.mjdAstronomicalTwEnd != kMjdNoRiseOrSet &&
        t1.mjdAstronomicalTwEnd < nightEnd) {
      nightStart = t1.mjdAstronomicalTwEnd;
    }
  } else if (dusk == kMjdNoRiseOrSet || dawn == kMjdNoRiseOrSet || dawn <= dusk) {
    // The night going on began yesterday.
    const Twilights t0 = twilightsOfDay(-1);
    nightStart = t0.mjdAstronomicalTwEnd2 != kMjdAlwaysInvisible ? t0.mjdAstronomicalTwEnd2
                                                                 : t0.mjdAstronomicalTwEnd;
    nightEnd = dawn;
  } else {
    nightStart = dusk;
    nightEnd = dawn;
  }

  double rise = 0.0;
  double set = 0.0;
  milkyWay.FindRiseSet(nightStart, deltaT, nightEnd, nightStart, &rise, &set,
                       &event.mjdVisibilityFrom, &event.mjdVisibilityTo);
  return event;
}

std::optional<NSDate> MilkyWay::nextDateGalacticCenterIsVisible(ephemeris::PtMilkyWay& milkyWay,
                                                                ephemeris::PtSun& sun,
                                                                NSDate atDate) const {
  if (milkyWay.observer()->latitude > kNorthernLimit) return std::nullopt;
  NSDate date = atDate;
  for (int day = 1; day <= kDaysSearched; ++day) {
    date = date.dateByAddingNumberOfDays(1);
    const MilkyWayEvent event = calculateGalacticCenterVisibility(milkyWay, sun, date);
    if (event.mjdVisibilityFrom != kMjdAlwaysInvisible) return date;
  }
  return std::nullopt;
}

double MilkyWay::azimuthOfGalacticCenter(const platform::CLLocation& location, double mjd) {
  ephemeris::PtPosition position;
  position.latitude = location.coordinate.latitude;
  position.longitude = location.coordinate.longitude;
  position.CalcObserverCoords();
  PtDateTime instant;
  instant.FromModifiedJulianDay(mjd);
  ephemeris::PtMilkyWay milkyWay(position);
  milkyWay.CalculateEclipticEquatorialAndHorizontalPositions(mjd, instant.DeltaT(), true);
  return milkyWay.horizontalPosition().phi;
}

}  // namespace lumenquest::events
