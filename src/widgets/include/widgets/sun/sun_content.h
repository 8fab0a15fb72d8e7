#pragma once

#include <string>
#include <vector>

#include "platform/ui_color.h"
#include "widgets/location/rise_set_content.h"
#include "widgets/sun/sun_light_widget_data.h"
#include "widgets/widget_kit.h"

namespace lumenquest::widgets {

/// One interval of the day.
struct LightTypeRow {
  std::string title;
  platform::UIColor fillColor;
  std::string interval;
};

/// What the Sun's views show.
struct SunContent {
  std::string address;
  /// Of the icon and of the mark of the current light.
  platform::UIColor sunColor;
  /// Points.
  double iconSize = 0.0;
  std::string lightType;
  /// None in the small family; astronomical twilight in the large one alone.
  std::vector<LightTypeRow> rows;
  RiseSetContent riseSet;
  /// "Blue hour 18:04"; empty when no change is ahead.
  std::string nextLight;
};

SunContent sunContent(const SunLightWidgetData& data, WidgetFamily family);

}  // namespace lumenquest::widgets
