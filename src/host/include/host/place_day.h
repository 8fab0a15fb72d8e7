#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "events/today_view_model.h"
#include "host/light_of_day.h"
#include "platform/core_location.h"
#include "platform/ns_time_zone.h"

namespace lumenquest::host {

/// Where a day is told of.
struct DayPlace {
  std::string title;
  platform::CLLocation location;
  platform::NSTimeZone timeZone;
};

/// Dates of the next visible galactic centre that were searched before: a search takes half a
/// second, and its result holds until midnight.
class NextVisibleDates {
 public:
  struct Key {
    platform::CLLocationCoordinate2D coordinate;
    /// MJD (UT) of the local midnight before.
    double mjdTodayAt0 = 0.0;

    bool operator==(const Key&) const = default;
  };

  /// Absent: not searched yet. Holds an absent date where the search found none.
  const std::optional<platform::NSDate>* find(const Key& key) const;
  void keep(const Key& key, std::optional<platform::NSDate> date);

 private:
  static constexpr std::size_t kMost = 64;
  std::deque<std::pair<Key, std::optional<platform::NSDate>>> dates_;
};

/// A place's day at the injected clock's instant. Instants are MJD (UT).
struct PlaceDay {
  DayPlace place;
  platform::NSDate now;
  double mjdNow = 0.0;
  events::TodayViewModel values;
  std::vector<LightSpan> lights;
  /// Of this local day, for the band; the view model's are the next ones. Maybe special values.
  double mjdSunRiseToday = 0.0;
  double mjdSunSetToday = 0.0;
  bool isSupermoon = false;
  /// To the Earth's centre, kilometres.
  double moonDistance = 0.0;
  float moonlessHours = 0.0f;
};

/// The Sun's day; with `dates` also the Moon and the galactic centre.
/// REQUIRES: the shared calendar and formatters are in the place's zone (platform::PlaceZone), as
/// they have to be while the result is shown.
PlaceDay computePlaceDay(const DayPlace& place, NextVisibleDates* dates);

}  // namespace lumenquest::host
