#include "host/place_day.h"

#include <algorithm>

#include "events/apogee_perigee.h"
#include "events/ephemeris_utils.h"
#include "events/widget_astrolib.h"

namespace lumenquest::host {

namespace {

using events::EphemerisUtils;
using platform::NSDate;

/// The galactic centre's night, without the search for a later one while it is known.
void AddNight(PlaceDay& day, NextVisibleDates& dates) {
  events::WidgetAstrolib tonight;
  tonight.setCurrentLocation(day.place.location);
  tonight.setCurrentTimeZone(day.place.timeZone);
  tonight.calculateData(events::WidgetDataGalacticCenter | events::WidgetDataMoon);
  day.isSupermoon = tonight.isSupermoon;
  day.moonlessHours = tonight.moonlessHours;

  const NextVisibleDates::Key key{day.place.location.coordinate, day.values.mjdTodayAt0};
  const bool isVisible = EphemerisUtils::drawEventAtMjd(tonight.mjdGcVisibilityStart);
  const std::optional<NSDate>* const known = dates.find(key);
  if (!isVisible && known == nullptr) {
    day.values.calculateNightData();
    dates.keep(key, day.values.dateNextVisiblity);
    return;
  }
  day.values.mjdGcVisibilityStart = tonight.mjdGcVisibilityStart;
  day.values.mjdGcVisibilityEnd = tonight.mjdGcVisibilityEnd;
  day.values.gcVisibilityStartAngle = tonight.gcVisibilityStartAngle;
  day.values.gcVisibilityEndAngle = tonight.gcVisibilityEndAngle;
  if (!isVisible) day.values.dateNextVisiblity = *known;
}

}  // namespace

const std::optional<NSDate>* NextVisibleDates::find(const Key& key) const {
  const auto found =
      std::find_if(dates_.begin(), dates_.end(), [&](const auto& one) { return one.first == key; });
  return found == dates_.end() ? nullptr : &found->second;
}

void NextVisibleDates::keep(const Key& key, std::optional<NSDate> date) {
  dates_.emplace_back(key, date);
  if (dates_.size() > kMost) dates_.pop_front();
}

PlaceDay computePlaceDay(const DayPlace& place, NextVisibleDates* dates) {
  PlaceDay day;
  day.place = place;
  day.now = NSDate::date();
  day.mjdNow = day.now.modifiedJulianDay();
  day.values.setCurrentLocation(place.location);
  day.values.calculateData();
  day.values.postalAddress = place.title;

  ephemeris::PtPosition observer;
  observer.latitude = place.location.coordinate.latitude;
  observer.CalcObserverCoords();
  observer.longitude = place.location.coordinate.longitude;
  ephemeris::PtSun sun(observer);
  ephemeris::PtMoon moon(observer);
  const double deltaT = NSDate::dateWithStartDateTime(day.now).ptDateTime().DeltaT();
  const double start = day.values.mjdTodayAt0;
  day.lights = lightOfDay(sun, start, day.values.mjdTomorrowAt0, deltaT);
  sun.FindEvents(ephemeris::SearchEvent::RiseSet, start, deltaT, &day.mjdSunRiseToday,
                 &day.mjdSunSetToday);
  if (dates == nullptr) return day;
  moon.CalculateEclipticEquatorialAndHorizontalPositions(day.mjdNow, deltaT, true);
  day.moonDistance = moon.horizontalPosition().r;
  AddNight(day, *dates);
  return day;
}

}  // namespace lumenquest::host
