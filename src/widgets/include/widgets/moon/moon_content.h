#pragma once

#include <optional>
#include <string>

#include "widgets/galactic_center/galactic_center_widget_data.h"
#include "widgets/location/rise_set_content.h"
#include "widgets/moon/moon_widget_data.h"
#include "widgets/widget_kit.h"

namespace lumenquest::widgets {

/// What the Moon's views show beside the Moon itself.
struct MoonContent {
  std::string address;
  /// The phase's name, and in brackets how much is lit or when the phase is.
  std::string phase;
  bool isSupermoon = false;
  RiseSetContent riseSet;
  /// In every family but the small one.
  std::optional<GCVisibilityContent> galacticCenter;
};

/// `gcData` may be null in the small family.
MoonContent moonContent(const MoonWidgetData& data, const GalacticCenterWidgetData* gcData,
                        WidgetFamily family);

}  // namespace lumenquest::widgets
