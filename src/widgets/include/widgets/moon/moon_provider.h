#pragma once

#include <optional>

#include "widgets/astronomy_timeline.h"
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
class MoonProvider final
    : public IntentTimelineProvider<MoonTimelineEntry, LocationSelectorIntent> {
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
