#include "widgets/sun/sun_light_widget_data.h"

namespace lumenquest::widgets {

namespace {

std::string IntervalText(const std::optional<std::string>& interval) {
  return interval && !interval->empty() ? *interval : kNoInterval;
}

}  // namespace

SunLightWidgetData::SunLightWidgetData(const RecordSources& sources)
    : locationData(sources.locationData()) {
  const events::WidgetAstrolib* const calculator = sources.calculator;
  if (calculator == nullptr) return;
  mjdTomorrowAt0 = calculator->mjdTomorrowAt0;
  mjdRise = calculator->mjdSunRise;
  mjdSet = calculator->mjdSunSet;
  sunElevation = calculator->sunElevation;
  lightType = calculator->currentLightType;
  nextEventMjd = calculator->nextEventMjd;
  goldenHourInterval = IntervalText(calculator->goldenHourInterval);
  blueHourInterval = IntervalText(calculator->blueHourInterval);
  astronomicalTwilightInterval = IntervalText(calculator->astronomicalTwilightInterval);
  nextEventName = calculator->nextEventName.value_or("");
}

}  // namespace lumenquest::widgets
