#include "widgets/moon/moon_provider.h"

#include <utility>

namespace lumenquest::widgets {

namespace {

MoonTimelineEntry EntryOf(const AstronomyEntry& made, WidgetFamily family) {
  MoonTimelineEntry entry{made.date, MoonWidgetData(made.sources), {}, made.theme};
  const bool isRefused = made.sources.calculator == nullptr;
  if (!isRefused && family != WidgetFamily::systemSmall) entry.gcData.emplace(made.sources);
  return entry;
}

}  // namespace

unsigned MoonProvider::maskFor(WidgetFamily family) {
  return family == WidgetFamily::systemSmall
             ? events::WidgetDataMoon
             : events::WidgetDataMoon | events::WidgetDataGalacticCenter;
}

MoonTimelineEntry MoonProvider::placeholder(const TimelineProviderContext& context) {
  return EntryOf(
      sampleEntry(tools_, maskFor(context.family), ThemeStyleEnum::themeSystem, {kSampleTimeZone}),
      context.family);
}

void MoonProvider::getSnapshot(const Intent& configuration, const TimelineProviderContext& context,
                               SnapshotCompletion completion) {
  completion(EntryOf(sampleEntry(tools_, maskFor(context.family), themeStyleOf(configuration.theme),
                                 platform::NSTimeZone::localTimeZone()),
                     context.family));
}

void MoonProvider::getTimeline(const Intent& configuration, const TimelineProviderContext& context,
                               TimelineCompletion completion) {
  const auto deliver = [family = context.family,
                        completion = std::move(completion)](const AstronomyEntry& made) {
    completion({{EntryOf(made, family)}, TimelineReloadPolicy::after(made.refreshDate)});
  };
  makeTimelineEntry(tools_, configuration, maskFor(context.family), deliver);
}

}  // namespace lumenquest::widgets
