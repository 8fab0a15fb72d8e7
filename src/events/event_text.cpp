#include "events/event_text.h"

#include "events/ephemeris_utils.h"

namespace lumenquest::events {

std::string eventText(double mjd, double mjdTodayAt0, double mjdTomorrowAt0) {
  return EphemerisUtils::drawEventAtMjd(mjd)
             ? EphemerisUtils::stringForMjd(mjd, mjdTodayAt0, mjdTomorrowAt0)
             : EphemerisUtils::mjdToString(mjd);
}

}  // namespace lumenquest::events
