#include "events/sun_event.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "ephemeris/constants.h"
#include "events/ephemeris_utils.h"
#include "platform/localized_strings.h"
#include "platform/ns_user_defaults.h"

namespace lumenquest::events {

namespace {

using platform::kTableEphemeris;
using platform::localizedString;
using platform::stringWithFormat;

constexpr double kOneHour = 1.0 / 24.0;
/// Stands for the open end of an interval.
constexpr double kOpenEnd = 0.0;

template <typename List, typename Mjd>
void SortByMjd(List& list, Mjd mjd) {
  std::stable_sort(list.begin(), list.end(),
                   [&](const auto& a, const auto& b) { return mjd(a) < mjd(b); });
}

void SortMarks(std::vector<LightTypeEvent>& marks) {
  SortByMjd(marks, [](const LightTypeEvent& mark) { return mark.mjd; });
}

}  // namespace

double TwilightEvent::timeIntervalStart() const {
  return EphemerisUtils::mjdToTimeInterval(mjdStart);
}

double TwilightEvent::timeIntervalEnd() const { return EphemerisUtils::mjdToTimeInterval(mjdEnd); }

TwilightIntervals::TwilightIntervals()
    : mjdFirstInterval(ephemeris::kMjdAlwaysInvisible),
      mjdSecondInterval(ephemeris::kMjdAlwaysInvisible),
      firstInterval("--") {}

SunEvent::SunEvent() {
  const platform::NSUserDefaults* settings = platform::NSUserDefaults::lumenquestUserDefaults();
  if (settings != nullptr && settings->boolForKey(platform::kUserDefaultsUseGeodesicLines)) {
    riseLinePositions.emplace();
    setLinePositions.emplace();
  }
}

void SunEvent::addEventToArray(std::vector<LightTypeEvent>& list, bool isBegin, double mjd) const {
  if (EphemerisUtils::drawEventAtMjd(mjd)) list.push_back({isBegin, mjd});
}

void SunEvent::addEvents(const SunEvent& day, LightType forLightType,
                         std::vector<LightTypeEvent>& inArray) const {
  const auto begin = [&](double mjd) { addEventToArray(inArray, true, mjd); };
  const auto end = [&](double mjd) { addEventToArray(inArray, false, mjd); };

  switch (forLightType) {
    case LightType::LightTypeCivilTwilight:
      begin(day.civilTwilight.mjdStart);
      end(day.mjdRise);
      begin(day.mjdSet);
      end(day.civilTwilight.mjdEnd);
      break;
    case LightType::LightTypeNauticalTwilight:
      begin(day.nauticalTwilight.mjdStart);
      end(day.civilTwilight.mjdStart);
      begin(day.civilTwilight.mjdEnd);
      end(day.nauticalTwilight.mjdEnd);
      break;
    case LightType::LightTypeAstronomicalTwilight:
      begin(day.astronomicalTwilight.mjdStart);
      end(day.nauticalTwilight.mjdStart);
      begin(day.nauticalTwilight.mjdEnd);
      end(day.astronomicalTwilight.mjdEnd);
      if (day.astronomicalTwilight2) end(day.astronomicalTwilight2->mjdEnd);
      break;
    case LightType::LightTypeBlueHour:
      begin(day.civilTwilight.mjdStart);
      end(day.blueHour.mjdEnd);
      begin(day.blueHour.mjdStart);
      end(day.civilTwilight.mjdEnd);
      break;
    case LightType::LightTypeGoldenHour:
    default:
      begin(day.blueHour.mjdEnd);
      end(day.goldenHour.mjdEnd);
      begin(day.goldenHour.mjdStart);
      end(day.blueHour.mjdStart);
      break;
  }
}

std::vector<LightTypeEvent> SunEvent::eventsForLightType(LightType lightType) const {
  std::vector<LightTypeEvent> marks;
  addEvents(*this, lightType, marks);
  SortMarks(marks);
  return marks;
}

TwilightIntervals SunEvent::twilightIntervalForLightType(LightType lightType) const {
  const std::vector<LightTypeEvent> marks = eventsForLightType(lightType);
  std::vector<std::string> texts;
  std::vector<double> starts;
  const auto add = [&](double mjdStart, double mjdEnd) {
    texts.push_back(EphemerisUtils::stringForIntervalMjdStart(mjdStart, mjdEnd));
  };

  for (std::size_t i = 0; i < marks.size();) {
    const LightTypeEvent& mark = marks[i];
    if (mark.isBegin) {
      add(mark.mjd, i + 1 < marks.size() ? marks[i + 1].mjd : kOpenEnd);
      starts.push_back(mark.mjd);
      i += 2;
    } else {
      add(i > 0 ? marks[i - 1].mjd : kOpenEnd, mark.mjd);
      starts.push_back(i > 0 ? marks[i - 1].mjd : mark.mjd);
      i += 1;
    }
  }

  TwilightIntervals intervals;
  if (texts.empty()) return intervals;
  intervals.mjdFirstInterval = starts.front();
  intervals.firstInterval = texts.front();
  if (texts.size() == 2) {
    intervals.mjdSecondInterval = starts[1];
    intervals.secondInterval = texts[1];
  } else {
    for (std::size_t i = 1; i < texts.size(); ++i) intervals.firstInterval += " | " + texts[i];
  }
  return intervals;
}

TwilightIntervals SunEvent::civilTwilightIntervals() const {
  return twilightIntervalForLightType(LightType::LightTypeCivilTwilight);
}

TwilightIntervals SunEvent::nauticalTwilightIntervals() const {
  return twilightIntervalForLightType(LightType::LightTypeNauticalTwilight);
}

TwilightIntervals SunEvent::astronomicalTwilightIntervals() const {
  return twilightIntervalForLightType(LightType::LightTypeAstronomicalTwilight);
}

TwilightIntervals SunEvent::blueHourIntervals() const {
  return twilightIntervalForLightType(LightType::LightTypeBlueHour);
}

TwilightIntervals SunEvent::goldenHourIntervals() const {
  return twilightIntervalForLightType(LightType::LightTypeGoldenHour);
}

std::optional<std::string> SunEvent::currentEventForLightType(LightType lightType, double atMjd,
                                                              const SunEvent& yesterdayEvents,
                                                              const SunEvent& tomorrowEvents,
                                                              double mjdTodayAt0,
                                                              double mjdTomorrowAt0) const {
  std::vector<LightTypeEvent> marks;
  addEvents(yesterdayEvents, lightType, marks);
  addEvents(*this, lightType, marks);
  addEvents(tomorrowEvents, lightType, marks);
  SortMarks(marks);

  const double cutoff = atMjd - kOneHour;
  const auto isCurrent = [&](double mjdStart, double mjdEnd) {
    return mjdStart > atMjd || mjdEnd > cutoff;
  };
  const auto text = [&](double mjdStart, double mjdEnd) {
    return EphemerisUtils::stringForIntervalMjdStart(mjdStart, mjdEnd, mjdTodayAt0, mjdTomorrowAt0);
  };

  for (std::size_t i = 0; i < marks.size();) {
    const LightTypeEvent& mark = marks[i];
    if (mark.isBegin) {
      if (i + 1 == marks.size()) {
        return EphemerisUtils::stringForIntervalMjdStart(mark.mjd, kOpenEnd);
      }
      const double mjdEnd = marks[i + 1].mjd;
      if (isCurrent(mark.mjd, mjdEnd)) return text(mark.mjd, mjdEnd);
      i += 2;
    } else if (i > 0) {
      const double mjdStart = marks[i - 1].mjd;
      if (isCurrent(mjdStart, mark.mjd)) return text(mjdStart, mark.mjd);
      i += 1;
    } else {
      if (mark.mjd > cutoff) return EphemerisUtils::stringForIntervalMjdStart(kOpenEnd, mark.mjd);
      i = 1;
    }
  }
  return std::nullopt;
}

void SunEvent::addEventToArray(std::vector<std::shared_ptr<BodyInfoSunEvent>>& list, double atMjd,
                               double withSunElevation, const std::string& withName,
                               const std::string& subtitle) const {
  if (!EphemerisUtils::drawEventAtMjd(atMjd)) return;
  auto event = std::make_shared<BodyInfoSunEvent>(atMjd, withName);
  event->bodyColor = EphemerisUtils::colorForSunElevation(withSunElevation);
  event->subtitle = subtitle;
  list.push_back(std::move(event));
}

std::vector<std::shared_ptr<BodyInfoSunEvent>> SunEvent::eventsArray() const {
  const auto word = [](const char* key) { return localizedString(key, kTableEphemeris); };
  const auto twoLines = [&](const char* first, const char* second) {
    return stringWithFormat("%@\n%@", {word(first), word(second)});
  };
  std::vector<std::shared_ptr<BodyInfoSunEvent>> list;
  const auto add = [&](double mjd, const char* nameKey, const std::string& subtitle,
                       double elevation) {
    addEventToArray(list, mjd, elevation, word(nameKey), subtitle);
  };

  add(astronomicalTwilight.mjdStart, "light_astronomical", word("event_nighttime_end"), -12.0);
  add(astronomicalTwilight.mjdEnd, "light_nighttime", word("event_twilight_astronomical_end"),
      -20.0);
  if (astronomicalTwilight2) {
    // Coloured as twilight, unlike the first end.
    add(astronomicalTwilight2->mjdEnd, "light_nighttime", word("event_twilight_astronomical_end"),
        -12.0);
  }
  add(nauticalTwilight.mjdStart, "light_nautical", word("event_twilight_astronomical_end"), -6.0);
  add(nauticalTwilight.mjdEnd, "light_astronomical", word("event_twilight_nautical_end"), -12.0);
  add(civilTwilight.mjdStart, "twilight_blue_hour",
      twoLines("event_twilight_civil_begin", "event_twilight_nautical_end"), -4.0);
  add(civilTwilight.mjdEnd, "light_nautical",
      twoLines("event_blue_hour_end", "event_twilight_civil_end"), -6.0);
  add(blueHour.mjdStart, "twilight_blue_hour", word("event_golden_hour_end"), -4.0);
  add(blueHour.mjdEnd, "twilight_golden_hour", word("event_blue_hour_end"), 6.0);
  add(goldenHour.mjdStart, "twilight_golden_hour", word("event_daytime_end"), 6.0);
  add(goldenHour.mjdEnd, "light_daytime", word("event_golden_hour_end"), 10.0);

  SortByMjd(list, [](const auto& event) { return event->mjd(); });
  return list;
}

}  // namespace lumenquest::events
