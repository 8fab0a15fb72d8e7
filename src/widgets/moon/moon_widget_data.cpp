#include "widgets/moon/moon_widget_data.h"

#include "ephemeris/constants.h"

namespace lumenquest::widgets {

MoonWidgetData::MoonWidgetData(const RecordSources& sources)
    : locationData(sources.locationData()) {
  const events::WidgetAstrolib* const calculator = sources.calculator;
  if (calculator == nullptr) return;
  mjdTomorrowAt0 = calculator->mjdTomorrowAt0;
  mjdRise = calculator->mjdMoonRise;
  mjdSet = calculator->mjdMoonSet;
  moonPhaseString = calculator->moonPhase.value_or("");
  moonPhase = calculator->phaseIllumination;
  zenithAngle = static_cast<float>(static_cast<double>(calculator->zenithAngle) *
                                   ephemeris::kRadiansToDegrees);
  isMoonWaning = calculator->isMoonWaning;
  isSupermoon = calculator->isSupermoon;
  moonElevation = calculator->moonElevation;
  sunElevation = calculator->sunElevation;
  isLimbWaning = calculator->isLimbWaning;
}

}  // namespace lumenquest::widgets
