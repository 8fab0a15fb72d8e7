#include "events/apogee_perigee.h"

#include <cmath>
#include <memory>

#include "platform/localized_strings.h"

namespace lumenquest::events {

namespace {

using ephemeris::PtApogeePerigee;
using platform::NSDate;

/// Kilometres below which a full Moon is a supermoon, always and near a perigee.
constexpr double kSupermoonDistance = 360000.0;
constexpr double kSupermoonDistanceNearPerigee = 361000.0;
/// Days.
constexpr double kNearPerigee = 1.5;

bool HasKind(const PtApogeePerigee& extreme) { return extreme.kind != 0; }

}  // namespace

unsigned ApogeePerigee::moonDistanceFromDistanceType(int distanceType) {
  return distanceType == PtApogeePerigee::kApogee ? MoonDistance::kApogee : MoonDistance::kPerigee;
}

unsigned ApogeePerigee::moonDistanceTypeDistanceType(int distanceType) {
  return moonDistanceFromDistanceType(distanceType);
}

std::vector<MoonDistance> ApogeePerigee::calculateApogeePerigeesForYear(
    int year, const CompareFunc& compareFunc) {
  std::vector<std::unique_ptr<PtApogeePerigee>> extremes;
  ephemeris::PtMoonApogeePerigee().CalculateValuesForYear(year, &extremes);

  std::vector<MoonDistance> accepted;
  for (const auto& extreme : extremes) {
    const NSDate date = NSDate::dateWithPtDateTime(extreme->date);
    if (!compareFunc(date, *extreme)) continue;
    accepted.push_back({moonDistanceFromDistanceType(extreme->kind), extreme->distance,
                        extreme->date.ModifiedJulianDay(), date});
  }
  return accepted;
}

std::vector<MoonDistance> ApogeePerigee::apogeePerigeesForYear(int year) {
  return calculateApogeePerigeesForYear(year, [=](NSDate date, const PtApogeePerigee& extreme) {
    return HasKind(extreme) && date.yearValue() == year;
  });
}

std::vector<MoonDistance> ApogeePerigee::apogeePerigeesForYear(int year, int andMonth) {
  return calculateApogeePerigeesForYear(year, [=](NSDate date, const PtApogeePerigee& extreme) {
    return HasKind(extreme) && date.yearValue() == year && date.monthValue() == andMonth;
  });
}

std::vector<MoonDistance> ApogeePerigee::apogeePerigeesForDate(NSDate date) {
  return calculateApogeePerigeesForYear(
      date.yearValue(), [=](NSDate extremeDate, const PtApogeePerigee& extreme) {
        return HasKind(extreme) && NSDate::isDate(extremeDate, date);
      });
}

bool ApogeePerigee::isFullMoonDateASupermoonDay(NSDate date, double moonDistance) {
  if (moonDistance < kSupermoonDistance) return true;
  const double mjd = date.modifiedJulianDay();
  for (const MoonDistance& extreme : apogeePerigeesForYear(date.yearValue(), date.monthValue())) {
    if (extreme.type == MoonDistance::kPerigee && std::fabs(extreme.mjd - mjd) <= kNearPerigee &&
        moonDistance < kSupermoonDistanceNearPerigee) {
      return true;
    }
  }
  return false;
}

std::string ApogeePerigee::nameForType(unsigned type) {
  return platform::localizedString(
      type == MoonDistance::kApogee ? "moon_distance_apogee" : "moon_distance_perigee",
      platform::kTableEphemeris);
}

}  // namespace lumenquest::events
