#include "widgets/sun/sun_provider.h"

#include <utility>

namespace lumenquest::widgets {

namespace {

SunTimelineEntry EntryOf(const AstronomyEntry& made, WidgetFamily family) {
  SunTimelineEntry entry{made.date, SunLightWidgetData(made.sources), {}, {}, made.theme};
  const bool isRefused = made.sources.calculator == nullptr;
  if (isRefused || family == WidgetFamily::systemLarge) entry.moonData.emplace(made.sources);
  if (!isRefused && family == WidgetFamily::systemLarge) entry.gcData.emplace(made.sources);
  return entry;
}

}  // namespace

unsigned SunProvider::maskFor(WidgetFamily family) {
  switch (family) {
    case WidgetFamily::systemSmall:
      return events::WidgetDataSunLight;
    case WidgetFamily::systemMedium:
      return events::WidgetDataSunLight | events::WidgetDataSunIntervals;
    case WidgetFamily::systemLarge:
      break;
  }
  return events::WidgetDataSunLight | events::WidgetDataSunIntervals | events::WidgetDataMoon |
         events::WidgetDataGalacticCenter;
}

SunTimelineEntry SunProvider::placeholder(const TimelineProviderContext& context) {
  // The intervals are computed for every family here.
  const unsigned mask = maskFor(context.family) | events::WidgetDataSunIntervals;
  return EntryOf(sampleEntry(tools_, mask, ThemeStyleEnum::themeSystem, {kSampleTimeZone}),
                 context.family);
}

void SunProvider::getSnapshot(const Intent& configuration, const TimelineProviderContext& context,
                              SnapshotCompletion completion) {
  completion(EntryOf(sampleEntry(tools_, maskFor(context.family), themeStyleOf(configuration.theme),
                                 platform::NSTimeZone::localTimeZone()),
                     context.family));
}

void SunProvider::getTimeline(const Intent& configuration, const TimelineProviderContext& context,
                              TimelineCompletion completion) {
  const auto deliver = [family = context.family,
                        completion = std::move(completion)](const AstronomyEntry& made) {
    SunTimelineEntry entry = EntryOf(made, family);
    const platform::NSDate reload =
        sunReloadDate(made.date, made.refreshDate, entry.data.nextEventMjd);
    completion({{std::move(entry)}, TimelineReloadPolicy::after(reload)});
  };
  makeTimelineEntry(tools_, configuration, maskFor(context.family), deliver);
}

}  // namespace lumenquest::widgets
