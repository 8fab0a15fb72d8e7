#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "events/widget_astrolib.h"
#include "widgets/intents/location_selector_intent.h"
#include "widgets/intents/theme_style_enum.h"
#include "widgets/location/location_widget_data.h"
#include "widgets/location/location_wrapper.h"
#include "widgets/widget_kit.h"

namespace lumenquest::widgets {

/// What a provider of the sky works with; lives as long as the provider, and as a request that
/// outlives it.
struct AstronomyTools {
  std::shared_ptr<LocationWrapper> locationWrapper = LocationWrapper::create();
  std::shared_ptr<events::WidgetAstrolib> astrolib = std::make_shared<events::WidgetAstrolib>();
};

/// What the entry of one request is made of.
struct AstronomyEntry {
  /// The moment of the request, which the entry bears.
  platform::NSDate date;
  ThemeStyleEnum theme = ThemeStyleEnum::themeSystem;
  /// Without a calculator when access to the location was refused; with one that has no location
  /// when there is none.
  RecordSources sources;
  /// When to ask again, unless something happens earlier.
  platform::NSDate refreshDate;
};

// The procedures that the Sun's, the Moon's and the galactic centre's providers share. `mask`: a
// sum of events::WidgetData.

/// Sample data: a fixed place in the given zone, now.
AstronomyEntry sampleEntry(const AstronomyTools& tools, unsigned mask, ThemeStyleEnum theme,
                           const platform::NSTimeZone& zone);

/// Finds the configuration's place, computes its values and hands over what they make. Not called
/// when no answer about the location ever comes.
void makeTimelineEntry(const AstronomyTools& tools, const LocationSelectorIntent& configuration,
                       unsigned mask, std::function<void(const AstronomyEntry& entry)> deliver);

/// When to ask for the Sun again: at its next change of light (MJD, UT) when that is less than an
/// hour off, so that the shown light changes on time; else at the refresh date.
platform::NSDate sunReloadDate(platform::NSDate now, platform::NSDate refreshDate,
                               double nextEventMjd);

}  // namespace lumenquest::widgets
