#include "widgets/galactic_center/galactic_center_provider.h"

#include <utility>

namespace lumenquest::widgets {

namespace {

GalacticCenterTimelineEntry EntryOf(const AstronomyEntry& made) {
  return {made.date, GalacticCenterWidgetData(made.sources), made.theme};
}

}  // namespace

unsigned GalacticCenterProvider::maskFor(WidgetFamily) { return events::WidgetDataGalacticCenter; }

GalacticCenterTimelineEntry GalacticCenterProvider::placeholder(
    const TimelineProviderContext& context) {
  return EntryOf(
      sampleEntry(tools_, maskFor(context.family), ThemeStyleEnum::themeSystem, {kSampleTimeZone}));
}

void GalacticCenterProvider::getSnapshot(const Intent& configuration,
                                         const TimelineProviderContext& context,
                                         SnapshotCompletion completion) {
  completion(EntryOf(sampleEntry(tools_, maskFor(context.family), themeStyleOf(configuration.theme),
                                 platform::NSTimeZone::localTimeZone())));
}

void GalacticCenterProvider::getTimeline(const Intent& configuration,
                                         const TimelineProviderContext& context,
                                         TimelineCompletion completion) {
  const auto deliver = [completion = std::move(completion)](const AstronomyEntry& made) {
    completion({{EntryOf(made)}, TimelineReloadPolicy::after(made.refreshDate)});
  };
  makeTimelineEntry(tools_, configuration, maskFor(context.family), deliver);
}

}  // namespace lumenquest::widgets
