#include "widgets/moon/moon_provider.h"

namespace lumenquest::widgets {

unsigned MoonProvider::maskFor(WidgetFamily family) {
  return family == WidgetFamily::systemSmall
             ? events::WidgetDataMoon
             : events::WidgetDataMoon | events::WidgetDataGalacticCenter;
}

MoonTimelineEntry MoonProvider::entryOf(const AstronomyEntry& made, WidgetFamily family) {
  MoonTimelineEntry entry{made.date, MoonWidgetData(made.sources), {}, made.theme};
  const bool isRefused = made.sources.calculator == nullptr;
  if (!isRefused && family != WidgetFamily::systemSmall) entry.gcData.emplace(made.sources);
  return entry;
}

}  // namespace lumenquest::widgets
