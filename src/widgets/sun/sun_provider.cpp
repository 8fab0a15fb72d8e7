#include "widgets/sun/sun_provider.h"

#include "platform/assertion.h"
#include "widgets/lq_date_time.h"

namespace lumenquest::widgets {

using platform::NSDate;

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

unsigned SunProvider::placeholderMask(WidgetFamily family) {
  return maskFor(family) | events::WidgetDataSunIntervals;
}

SunTimelineEntry SunProvider::entryOf(const AstronomyEntry& made, WidgetFamily family) {
  SunTimelineEntry entry{made.date, SunLightWidgetData(made.sources), {}, {}, made.theme};
  const bool isRefused = made.sources.calculator == nullptr;
  if (isRefused || family == WidgetFamily::systemLarge) entry.moonData.emplace(made.sources);
  if (!isRefused && family == WidgetFamily::systemLarge) entry.gcData.emplace(made.sources);
  return entry;
}

NSDate SunProvider::reloadDate(const AstronomyEntry& made, const SunTimelineEntry& entry) {
  return sunReloadDate(made.date, made.refreshDate, entry.data.nextEventMjd);
}

NSDate sunReloadDate(NSDate now, NSDate refreshDate, double nextEventMjd) {
  constexpr double kMostMinutesAfterRefresh = 30.0;
  if (!(nextEventMjd > 0.0)) return refreshDate;
  LQDateTime event;
  event.fromModifiedJulianDay(nextEventMjd);
  const auto date = event.toDate(false);
  LUMENQUEST_ASSERT(date.has_value());
  if (*date <= now) return refreshDate;
  if (refreshDate >= *date) return *date;
  const double seconds =
      date->timeIntervalSinceReferenceDate() - refreshDate.timeIntervalSinceReferenceDate();
  return seconds > 0.0 && seconds / 60.0 < kMostMinutesAfterRefresh ? *date : refreshDate;
}

}  // namespace lumenquest::widgets
