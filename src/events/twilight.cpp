#include "events/twilight.h"

#include "events/ephemeris_utils.h"
#include "platform/ns_date.h"

namespace lumenquest::events {

using ephemeris::SearchEvent;
using platform::NSDate;

Twilights Twilight::calculateTwilightsForMjd(double mjd, double deltaT, ephemeris::PtSun& sun) {
  Twilights t;
  sun.FindEvents(SearchEvent::CivilTwilight, mjd, deltaT, &t.mjdCivilTwStart, &t.mjdCivilTwEnd);
  sun.FindEvents(SearchEvent::NauticalTwilight, mjd, deltaT, &t.mjdNautTwStart, &t.mjdNautTwEnd);
  // The second dusk counts for the day that is shown, which is the present one; those of its
  // neighbours would stand in its lists of marks.
  EphemerisUtils::calculateAstronomicalTwilight(sun, mjd, deltaT, NSDate::date().dayValue(),
                                                &t.mjdAstronomicalTwStart, &t.mjdAstronomicalTwEnd,
                                                &t.mjdAstronomicalTwEnd2);
  sun.FindEvents(SearchEvent::BlueHour, mjd, deltaT, &t.mjdBlueHourEnd, &t.mjdBlueHourStart);
  sun.FindEvents(SearchEvent::GoldenHour, mjd, deltaT, &t.mjdGoldenHourEnd, &t.mjdGoldenHourStart);
  return t;
}

}  // namespace lumenquest::events
