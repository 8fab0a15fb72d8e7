#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "events/body_info_event.h"
#include "events/light_type.h"

namespace lumenquest::events {

/// An interval of light, MJD.
struct TwilightEvent {
  /// Its ends in seconds since the platform's reference date.
  double timeIntervalStart() const;
  double timeIntervalEnd() const;

  double mjdStart = 0.0;
  double mjdEnd = 0.0;
};

/// A mark at which an interval begins or ends.
struct LightTypeEvent {
  bool isBegin = false;
  double mjd = 0.0;
};

/// A day's intervals of one light type as texts.
struct TwilightIntervals {
  TwilightIntervals();

  double mjdFirstInterval;
  double mjdSecondInterval;
  std::string firstInterval;
  std::string secondInterval;
};

/// A line of the map towards sunrise or sunset; drawn by the main application, never here.
struct GeodesicLine;

/// One day's light phases.
class SunEvent {
 public:
  SunEvent();

  std::shared_ptr<const GeodesicLine> riseLine;
  std::shared_ptr<const GeodesicLine> setLine;

  TwilightEvent civilTwilight;
  TwilightEvent nauticalTwilight;
  TwilightEvent astronomicalTwilight;
  std::optional<TwilightEvent> astronomicalTwilight2;
  TwilightEvent blueHour;
  TwilightEvent goldenHour;
  double mjdRise = 0.0;
  double mjdSet = 0.0;

  /// Positions along the lines of sunrise and sunset, for the map of the main application. Present
  /// only when the user has geodesic lines switched on.
  std::optional<std::vector<double>> riseLinePositions;
  std::optional<std::vector<double>> setLinePositions;
  /// Carried for the main application's map; not filled here.
  std::vector<double> positionsPerHour;

  /// Append a mark when the instant can be drawn.
  void addEventToArray(std::vector<LightTypeEvent>& list, bool isBegin, double mjd) const;
  /// Append the marks of one day.
  void addEvents(const SunEvent& day, LightType forLightType,
                 std::vector<LightTypeEvent>& inArray) const;
  /// This day's marks in order of time.
  std::vector<LightTypeEvent> eventsForLightType(LightType lightType) const;

  /// The day's intervals of a light type: one or two with their starts, more joined by " | ", none
  /// as "--". The operations behind it are its short forms.
  TwilightIntervals twilightIntervalForLightType(LightType lightType) const;
  TwilightIntervals civilTwilightIntervals() const;
  TwilightIntervals nauticalTwilightIntervals() const;
  TwilightIntervals astronomicalTwilightIntervals() const;
  TwilightIntervals blueHourIntervals() const;
  TwilightIntervals goldenHourIntervals() const;

  /// The interval to show at `atMjd`, this being today: one that is to come or that ended less than
  /// an hour ago. Nothing when the three days have none.
  std::optional<std::string> currentEventForLightType(LightType lightType, double atMjd,
                                                      const SunEvent& yesterdayEvents,
                                                      const SunEvent& tomorrowEvents,
                                                      double mjdTodayAt0,
                                                      double mjdTomorrowAt0) const;

  /// Append a change of light when its instant can be drawn, coloured by a Sun elevation in
  /// degrees.
  void addEventToArray(std::vector<std::shared_ptr<BodyInfoSunEvent>>& list, double atMjd,
                       double withSunElevation, const std::string& withName,
                       const std::string& subtitle) const;
  /// The day's changes of light in order of time.
  std::vector<std::shared_ptr<BodyInfoSunEvent>> eventsArray() const;
};

}  // namespace lumenquest::events
