#include "widgets/location/rise_set_content.h"

#include "ephemeris/constants.h"
#include "platform/localized_strings.h"
#include "widgets/text.h"

namespace lumenquest::widgets {

RiseSetContent riseSetContent(double rise, double set, double mjdTomorrowAt0,
                              const LocationWidgetData& data) {
  const auto either = [&](double special) { return rise == special || set == special; };
  const auto sentence = [](const char* key) {
    return RiseSetContent{{}, platform::localizedString(key, platform::kTableEphemeris)};
  };
  if (either(ephemeris::kMjdCircumpolar)) return sentence("body_circumpolar");
  if (either(ephemeris::kMjdAlwaysInvisible)) return sentence("body_always_invisible");
  if (rise == ephemeris::kMjdNoRiseOrSet && set == ephemeris::kMjdNoRiseOrSet) {
    return sentence("event_no_rise_set");
  }
  if (rise == 0.0 && set == 0.0) return {};
  return {{{true, eventTimeText(rise, mjdTomorrowAt0, data)},
           {false, eventTimeText(set, mjdTomorrowAt0, data)}},
          {}};
}

}  // namespace lumenquest::widgets
