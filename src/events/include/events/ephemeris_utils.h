#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ephemeris/pt_moon.h"
#include "ephemeris/pt_sun.h"
#include "events/moon_phase_result.h"
#include "events/moon_rise_set.h"
#include "platform/named_color.h"
#include "platform/ns_date.h"

namespace lumenquest::events {

/// From the engine's instants (MJD, with its special values) to the texts and numbers that people
/// read.
class EphemerisUtils {
 public:
  // Texts of instants.

  /// Time of day, rounded to the minute unless seconds are asked for; a special value gives its
  /// text.
  static std::string mjdToString(double mjd);
  static std::string mjdToString(double mjd, bool withSeconds);
  /// Time with a direction in degrees.
  static std::string stringForMjd(double mjd, double azimuth);
  /// Time with a mark when the instant lies before today or after it.
  static std::string stringForMjd(double mjd, double mjdTodayAt0, double mjdTomorrowAt0);
  /// Interval, an open end (0 or kMjdNoRiseOrSet) shown as "(-1)" or "(+1)".
  static std::string stringForIntervalMjdStart(double mjdStart, double mjdEnd);
  /// Interval with the marks of the days before and after; a mark that both ends share is shown
  /// once.
  static std::string stringForIntervalMjdStart(double mjdStart, double mjdEnd, double mjdTodayAt0,
                                               double mjdTomorrowAt0);
  /// Joins two times, showing a half-day marker that both share once, after the end.
  static std::string concatCleaningAmPmStrings(const std::string& startMjdString,
                                               const std::string& endMjdString);
  /// Whether both texts carry the mark of the day after, or both that of the day before.
  static bool hasRepeatedPlusMinsOneDayStart(const std::string& start, const std::string& end);

  /// Whether the value is an instant (0 counts as one) rather than a special value.
  static bool drawEventAtMjd(double mjd);
  /// Seconds since the platform's reference date, to the minute.
  static double mjdToTimeInterval(double mjd);

  // Numbers.

  /// Hours from start to end on one day; special values count as their meaning.
  static float hoursBetweenStartMjd(double mjdStart, double andEndMjd);
  /// Hours and minutes of a moonless night, such as "2h 15min". The minutes are rounded without a
  /// carry: 1.999 is "1h 60min". A value that is not finite is a programming error.
  static std::string moonlessHoursText(float hours);
  /// Days since the last new Moon.
  static float moonAgeAt(platform::NSDate date);
  /// Apparent size of the Moon at a distance in km relative to its mean size; 0.1 is a tenth
  /// larger.
  static double moonPercentageFromMeanAngularDiameterAtDistance(double distance);

  // Light.

  /// Localised name and palette colour of the light at an apparent Sun elevation in degrees.
  static std::string lightTypeForSunElevation(double elevation);
  static platform::NamedColor colorForSunElevation(double elevation);

  // The Moon's phase.

  /// Localised name of a phase code 0…7, else nothing.
  static std::optional<std::string> moonPhaseToString(int phase);
  /// The Moon's look at an instant. With high precision the whole local day of a principal phase
  /// counts as that phase.
  static MoonPhaseResult moonPhaseDataForMjd(double mjd, double withDeltaT, ephemeris::PtSun& sun,
                                             ephemeris::PtMoon& moon, platform::NSDate currentDate);
  static MoonPhaseResult moonPhaseDataForMjd(double mjd, double withDeltaT, ephemeris::PtSun& sun,
                                             ephemeris::PtMoon& moon, platform::NSDate currentDate,
                                             bool withHighPrecision);

  // The dark night.

  /// Hours of tonight's astronomical night during which the Moon is down.
  static float moonlessHoursForNightAtDate(platform::NSDate date, ephemeris::PtSun& sun,
                                           ephemeris::PtMoon& moon);
  /// Crossings of −18° in the 24 h from `atMjd`, with a second evening crossing when that one falls
  /// on the day of the month `localDay`, else kMjdAlwaysInvisible.
  static void calculateAstronomicalTwilight(ephemeris::PtSun& sun, double atMjd, double deltaT,
                                            int localDay, double* mjdAstTwStart,
                                            double* mjdAstTwEnd, double* mjdAstTwEnd2);
  /// Appends the spans in which the Moon is up on a day with this rise and set.
  static void addMoonRiseSets(std::vector<MoonRiseSet>& list, double forMjdRise, double andMjdSet);
  /// Hours of the night that fall into a span with the Moon up.
  static double nightHoursAffectedWithMoon(const MoonRiseSet& moon, double nightStart,
                                           double nightEnd);
};

}  // namespace lumenquest::events
