#include "widgets/moon/moon_content.h"

namespace lumenquest::widgets {

MoonContent moonContent(const MoonWidgetData& data, const GalacticCenterWidgetData* gcData,
                        WidgetFamily family) {
  MoonContent content;
  content.address = data.locationData.address.value_or("");
  content.phase = data.moonPhaseString;
  content.isSupermoon = data.isSupermoon;
  content.riseSet =
      riseSetContent(data.mjdRise, data.mjdSet, data.mjdTomorrowAt0, data.locationData);
  if (gcData != nullptr) content.galacticCenter = gcVisibilityContent(*gcData, family);
  return content;
}

}  // namespace lumenquest::widgets
