#include "events/twilight.h"

#include "platform/ns_date.h"

namespace lumenquest::events {

using ephemeris::SearchEvent;
using platform::NSDate;

Twilights Twilight::calculateTwilightsForMjd(double mjd, double deltaT, ephemeris::PtSun& sun) {
  Twilights t;
  t.mjdAstronomicalTwEnd2 = ephemeris::kMjdAlwaysInvisible;

  sun.FindEvents(SearchEvent::CivilTwilight, mjd, deltaT, &t.mjdCivilTwStart, &t.mjdCivilTwEnd);
  sun.FindEvents(SearchEvent::NauticalTwilight, mjd, deltaT, &t.mjdNautTwStart, &t.mjdNautTwEnd);
  sun.FindEvents(SearchEvent::AstronomicalTwilight, mjd, deltaT, &t.mjdAstronomicalTwStart,
                 &t.mjdAstronomicalTwEnd);

  // Dusk in the day's first hours: the evening may bring another one before midnight.
  if (t.mjdAstronomicalTwEnd < t.mjdAstronomicalTwStart) {
    double start = 0.0;
    double end = 0.0;
    sun.FindEvents(SearchEvent::AstronomicalTwilight, mjd + 0.5, deltaT, &start, &end);
    // Held against the present day, whichever day is computed.
    if (NSDate::dateFromModifiedJulianDay(end).dayValue() == NSDate::date().dayValue()) {
      t.mjdAstronomicalTwEnd2 = end;
    }
  }

  sun.FindEvents(SearchEvent::BlueHour, mjd, deltaT, &t.mjdBlueHourEnd, &t.mjdBlueHourStart);
  sun.FindEvents(SearchEvent::GoldenHour, mjd, deltaT, &t.mjdGoldenHourEnd, &t.mjdGoldenHourStart);
  return t;
}

}  // namespace lumenquest::events
