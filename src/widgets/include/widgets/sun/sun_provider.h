#pragma once

#include <optional>

#include "widgets/astronomy_timeline.h"
#include "widgets/galactic_center/galactic_center_widget_data.h"
#include "widgets/moon/moon_widget_data.h"
#include "widgets/sun/sun_light_widget_data.h"

namespace lumenquest::widgets {

struct SunTimelineEntry {
  platform::NSDate date;
  SunLightWidgetData data;
  /// These two in the large family; a zero Moon record also where access was refused.
  std::optional<MoonWidgetData> moonData;
  std::optional<GalacticCenterWidgetData> gcData;
  ThemeStyleEnum theme = ThemeStyleEnum::themeSystem;
};

/// The light of the day, for the Sun widgets; with Moon and galactic centre for the large one.
class SunProvider final : public IntentTimelineProvider<SunTimelineEntry, LocationSelectorIntent> {
 public:
  Entry placeholder(const TimelineProviderContext& context) override;
  void getSnapshot(const Intent& configuration, const TimelineProviderContext& context,
                   SnapshotCompletion completion) override;
  void getTimeline(const Intent& configuration, const TimelineProviderContext& context,
                   TimelineCompletion completion) override;

  /// What is computed for a family: a sum of events::WidgetData.
  static unsigned maskFor(WidgetFamily family);

 private:
  AstronomyTools tools_;
};

}  // namespace lumenquest::widgets
