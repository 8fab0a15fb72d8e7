#pragma once

#include <optional>

#include "widgets/astronomy_provider.h"
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
class SunProvider final : public AstronomyProvider<SunProvider, SunTimelineEntry> {
 public:
  static unsigned maskFor(WidgetFamily family);
  static SunTimelineEntry entryOf(const AstronomyEntry& made, WidgetFamily family);
  /// The intervals are computed for every family here.
  static unsigned placeholderMask(WidgetFamily family);
  static platform::NSDate reloadDate(const AstronomyEntry& made, const SunTimelineEntry& entry);
};

/// When to ask for the Sun again: at its next change of light (MJD, UT) when that is less than an
/// hour off, so that the shown light changes on time; else at the refresh date.
platform::NSDate sunReloadDate(platform::NSDate now, platform::NSDate refreshDate,
                               double nextEventMjd);

}  // namespace lumenquest::widgets
