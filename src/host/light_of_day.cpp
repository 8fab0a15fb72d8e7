#include "host/light_of_day.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "events/ephemeris_utils.h"
#include "platform/localized_strings.h"
#include "widgets/palette.h"

namespace lumenquest::host {

namespace {

using ephemeris::SearchEvent;
namespace palette = widgets::palette;

struct LightTraits {
  const char* nameKey;
  platform::UIColor color;
};

constexpr std::array<LightTraits, 6> kLights{{
    {"light_daytime", palette::kLumenquestYellow},
    {"twilight_golden_hour", palette::kGoldenHourLayerColor},
    {"twilight_blue_hour", palette::kCivilTwiligthLayerColor},
    {"light_nautical", palette::kNauticalTwilightLayerColor},
    {"light_astronomical", palette::kAstronomicalTwilightLayerColor},
    {"light_nighttime", palette::kNight},
}};

/// The thresholds below the lights, in their order; nothing is below the night.
constexpr std::array<SearchEvent, 5> kThresholds{
    SearchEvent::GoldenHour, SearchEvent::BlueHour, SearchEvent::CivilTwilight,
    SearchEvent::NauticalTwilight, SearchEvent::AstronomicalTwilight};

struct Crossing {
  double mjd;
  Light to;
};

Light LightAt(std::size_t index) { return static_cast<Light>(index); }

/// The light of a day that crosses no threshold.
Light OnlyLight(ephemeris::PtSun& sun, double mjd, double deltaT) {
  sun.CalculateEclipticEquatorialAndHorizontalPositions(mjd, deltaT, true);
  const std::string name =
      events::EphemerisUtils::lightTypeForSunElevation(sun.horizontalPosition().theta);
  std::size_t index = 0;
  while (index + 1 < kLights.size() && nameOf(LightAt(index)) != name) ++index;
  return LightAt(index);
}

}  // namespace

std::string nameOf(Light light) {
  return platform::localizedString(kLights[static_cast<std::size_t>(light)].nameKey,
                                   platform::kTableEphemeris);
}

platform::UIColor colorOf(Light light) { return kLights[static_cast<std::size_t>(light)].color; }

std::vector<LightSpan> lightOfDay(ephemeris::PtSun& sun, double mjdTodayAt0, double mjdTomorrowAt0,
                                  double deltaT) {
  std::vector<Crossing> crossings;
  // A search finds one crossing of each direction in its 24 hours. Where dusk falls around
  // midnight, a day has two; those half a day around see the other one. Today's own search goes
  // first, for its instants are those that the widgets show.
  for (const double start : {mjdTodayAt0, mjdTodayAt0 - 0.5, mjdTodayAt0 + 0.5}) {
    for (std::size_t i = 0; i < kThresholds.size(); ++i) {
      double up = 0.0;
      double down = 0.0;
      sun.FindEvents(kThresholds[i], start, deltaT, &up, &down);
      for (const Crossing& found : {Crossing{up, LightAt(i)}, Crossing{down, LightAt(i + 1)}}) {
        constexpr double kSame = 5.0 / 1440.0;
        const bool isKnown = std::any_of(crossings.begin(), crossings.end(), [&](const auto& one) {
          return one.to == found.to && std::fabs(one.mjd - found.mjd) < kSame;
        });
        if (!isKnown && events::EphemerisUtils::drawEventAtMjd(found.mjd) &&
            found.mjd >= mjdTodayAt0 && found.mjd < mjdTomorrowAt0) {
          crossings.push_back(found);
        }
      }
    }
  }
  std::sort(crossings.begin(), crossings.end(),
            [](const Crossing& a, const Crossing& b) { return a.mjd < b.mjd; });
  const double beforeFirst = crossings.empty() ? (mjdTodayAt0 + mjdTomorrowAt0) / 2.0
                                               : (mjdTodayAt0 + crossings.front().mjd) / 2.0;
  std::vector<LightSpan> spans{{mjdTodayAt0, mjdTomorrowAt0, OnlyLight(sun, beforeFirst, deltaT)}};
  for (const Crossing& crossing : crossings) {
    spans.back().mjdEnd = crossing.mjd;
    spans.push_back({crossing.mjd, mjdTomorrowAt0, crossing.to});
  }
  return spans;
}

}  // namespace lumenquest::host
