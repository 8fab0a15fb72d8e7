#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ephemeris/pt_moon_apogee_perigee.h"
#include "platform/ns_date.h"

namespace lumenquest::events {

/// An extreme of the Moon's distance.
struct MoonDistance {
  static constexpr unsigned kApogee = 1;
  static constexpr unsigned kPerigee = 2;

  unsigned type = 0;
  /// Kilometres.
  double aproxDistance = 0.0;
  double mjd = 0.0;
  platform::NSDate date;
};

/// Apogees, perigees and supermoons as people's calendars have them: local years, months and days.
class ApogeePerigee {
 public:
  /// Accepts an extreme by its date and the engine's record.
  using CompareFunc = std::function<bool(platform::NSDate, const ephemeris::PtApogeePerigee&)>;

  /// The type of MoonDistance for the engine's kind of extreme: 1 apogee, anything else perigee.
  static unsigned moonDistanceFromDistanceType(int distanceType);
  static unsigned moonDistanceTypeDistanceType(int distanceType);

  /// The year's extremes that the filter accepts, in order of time.
  static std::vector<MoonDistance> calculateApogeePerigeesForYear(int year,
                                                                  const CompareFunc& compareFunc);
  /// Those of a local year, of a month in it, of a day.
  static std::vector<MoonDistance> apogeePerigeesForYear(int year);
  static std::vector<MoonDistance> apogeePerigeesForYear(int year, int andMonth);
  static std::vector<MoonDistance> apogeePerigeesForDate(platform::NSDate date);

  /// Whether a full Moon at this instant and distance (km) is a supermoon: below 360,000 km, or
  /// below 361,000 km within a day and a half of a perigee of the same month.
  static bool isFullMoonDateASupermoonDay(platform::NSDate date, double moonDistance);

  /// Localised name of an extreme.
  static std::string nameForType(unsigned type);
};

}  // namespace lumenquest::events
