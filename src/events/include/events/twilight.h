#pragma once

#include "ephemeris/constants.h"
#include "ephemeris/pt_sun.h"

namespace lumenquest::events {

/// The instants of one local day at which the Sun crosses the bounds of the light phases, MJD (UT).
/// Any of them can be one of the special values of the event search.
///
/// For the twilights the morning crossing is the start; for the blue and golden hours the evening
/// crossing is.
struct Twilights {
  double mjdCivilTwStart = 0.0;
  double mjdCivilTwEnd = 0.0;
  double mjdNautTwStart = 0.0;
  double mjdNautTwEnd = 0.0;
  double mjdAstronomicalTwStart = 0.0;
  double mjdAstronomicalTwEnd = 0.0;
  /// A second evening crossing of −18° on the same day, where dusk falls around midnight.
  double mjdAstronomicalTwEnd2 = 0.0;
  double mjdBlueHourStart = 0.0;
  double mjdBlueHourEnd = 0.0;
  double mjdGoldenHourStart = 0.0;
  double mjdGoldenHourEnd = 0.0;
};

/// Finds the bounds of a day's light phases.
class Twilight {
 public:
  /// The crossings of the local day that starts at `mjd`. The second astronomical end counts only
  /// when it falls on the day of the month of the present moment.
  static Twilights calculateTwilightsForMjd(double mjd, double deltaT, ephemeris::PtSun& sun);
};

}  // namespace lumenquest::events
