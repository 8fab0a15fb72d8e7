#pragma once

#include <string>
#include <vector>

#include "ephemeris/pt_sun.h"
#include "platform/ui_color.h"

namespace lumenquest::host {

/// The lights of a day, from the brightest to the darkest.
enum class Light { daytime, goldenHour, blueHour, nautical, astronomical, night };

/// Localised.
std::string nameOf(Light light);
platform::UIColor colorOf(Light light);

/// A light from one change to the next, MJD (UT).
struct LightSpan {
  double mjdStart = 0.0;
  double mjdEnd = 0.0;
  Light light = Light::night;

  bool operator==(const LightSpan&) const = default;
};

/// The lights of a local day without gaps, in order of time. The day lasts from one midnight to the
/// next, 23 to 25 hours, and has each crossing of a threshold, also where dusk comes twice.
/// `deltaT` is TT − UT in days.
std::vector<LightSpan> lightOfDay(ephemeris::PtSun& sun, double mjdTodayAt0, double mjdTomorrowAt0,
                                  double deltaT);

}  // namespace lumenquest::host
