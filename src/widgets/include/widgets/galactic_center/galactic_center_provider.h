#pragma once

#include "widgets/astronomy_timeline.h"
#include "widgets/galactic_center/galactic_center_widget_data.h"

namespace lumenquest::widgets {

struct GalacticCenterTimelineEntry {
  platform::NSDate date;
  GalacticCenterWidgetData data;
  ThemeStyleEnum theme = ThemeStyleEnum::themeSystem;
};

/// When the galactic centre can be seen tonight.
class GalacticCenterProvider final
    : public IntentTimelineProvider<GalacticCenterTimelineEntry, LocationSelectorIntent> {
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
