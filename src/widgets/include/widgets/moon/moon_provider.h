#pragma once

#include <optional>

#include "widgets/astronomy_provider.h"
#include "widgets/galactic_center/galactic_center_widget_data.h"
#include "widgets/moon/moon_widget_data.h"

namespace lumenquest::widgets {

struct MoonTimelineEntry {
  platform::NSDate date;
  MoonWidgetData data;
  /// In every family but the small one.
  std::optional<GalacticCenterWidgetData> gcData;
  ThemeStyleEnum theme = ThemeStyleEnum::themeSystem;
};

/// The Moon as it looks now, with tonight's galactic centre in the medium family.
class MoonProvider final : public AstronomyProvider<MoonProvider, MoonTimelineEntry> {
 public:
  static unsigned maskFor(WidgetFamily family);
  static MoonTimelineEntry entryOf(const AstronomyEntry& made, WidgetFamily family);
};

}  // namespace lumenquest::widgets
