#pragma once

#include "widgets/astronomy_provider.h"
#include "widgets/galactic_center/galactic_center_widget_data.h"

namespace lumenquest::widgets {

struct GalacticCenterTimelineEntry {
  platform::NSDate date;
  GalacticCenterWidgetData data;
  ThemeStyleEnum theme = ThemeStyleEnum::themeSystem;
};

/// When the galactic centre can be seen tonight.
class GalacticCenterProvider final
    : public AstronomyProvider<GalacticCenterProvider, GalacticCenterTimelineEntry> {
 public:
  static unsigned maskFor(WidgetFamily family);
  static GalacticCenterTimelineEntry entryOf(const AstronomyEntry& made, WidgetFamily family);
};

}  // namespace lumenquest::widgets
