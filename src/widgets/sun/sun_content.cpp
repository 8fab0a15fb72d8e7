#include "widgets/sun/sun_content.h"

#include "platform/localized_strings.h"
#include "widgets/ephemeris_utils.h"
#include "widgets/palette.h"
#include "widgets/text.h"

namespace lumenquest::widgets {

SunContent sunContent(const SunLightWidgetData& data, WidgetFamily family) {
  constexpr double kSmallIcon = 31.0;
  constexpr double kLargeIcon = 57.0;
  SunContent content;
  content.address = data.locationData.address.value_or("");
  content.sunColor = EphemerisUtils::sunColor(static_cast<double>(data.sunElevation));
  content.iconSize = family == WidgetFamily::systemSmall ? kSmallIcon : kLargeIcon;
  content.lightType = data.lightType;
  const auto addRow = [&](const char* key, const platform::UIColor& color,
                          const std::string& interval) {
    content.rows.push_back(
        {platform::localizedString(key, platform::kTableEphemeris), color, interval});
  };
  if (family != WidgetFamily::systemSmall) {
    addRow("twilight_golden_hour", palette::kGoldenHourLayerColor, data.goldenHourInterval);
    addRow("twilight_blue_hour", palette::kCivilTwiligthLayerColor, data.blueHourInterval);
  }
  if (family == WidgetFamily::systemLarge) {
    addRow("twilight_astronomical", palette::kAstronomicalTwilightLayerColor,
           data.astronomicalTwilightInterval);
  }
  content.riseSet =
      riseSetContent(data.mjdRise, data.mjdSet, data.mjdTomorrowAt0, data.locationData);
  if (data.nextEventMjd > 0.0) {
    content.nextLight = data.nextEventName + " " +
                        eventTimeText(data.nextEventMjd, data.mjdTomorrowAt0, data.locationData);
  }
  return content;
}

}  // namespace lumenquest::widgets
