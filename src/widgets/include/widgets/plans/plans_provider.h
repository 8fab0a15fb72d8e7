#pragma once

#include "widgets/intents/theme_selector_intent.h"
#include "widgets/plans/plan_item.h"
#include "widgets/widget_kit.h"

namespace lumenquest::widgets {

/// The next plans of the shared database.
class PlansProvider final : public IntentTimelineProvider<PlansTimelineEntry, ThemeSelectorIntent> {
 public:
  Entry placeholder(const TimelineProviderContext& context) override;
  void getSnapshot(const Intent& configuration, const TimelineProviderContext& context,
                   SnapshotCompletion completion) override;
  /// At once: the plans from today's local midnight on. Without a store, or when it cannot be read,
  /// there are none.
  void getTimeline(const Intent& configuration, const TimelineProviderContext& context,
                   TimelineCompletion completion) override;
};

}  // namespace lumenquest::widgets
