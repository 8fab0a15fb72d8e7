#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "events/widget_astrolib.h"
#include "widgets/intents/location_selector_intent.h"
#include "widgets/intents/theme_style_enum.h"
#include "widgets/location/location_widget_data.h"
#include "widgets/location/location_wrapper.h"
#include "widgets/widget_kit.h"

namespace lumenquest::widgets {

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

/// What the Sun's, the Moon's and the galactic centre's providers share. `Provider`, which derives
/// from it, has
///
///     static unsigned maskFor(WidgetFamily);  // what is computed: a sum of events::WidgetData
///     static EntryType entryOf(const AstronomyEntry&, WidgetFamily);
///
/// and may have its own placeholderMask and reloadDate. These are static because an answer may come
/// after the provider. A copy shares the fields; a request that still waits for the device's
/// position when the last copy goes, goes with it.
template <typename Provider, typename EntryType>
class AstronomyProvider : public IntentTimelineProvider<EntryType, LocationSelectorIntent> {
  using Base = IntentTimelineProvider<EntryType, LocationSelectorIntent>;

 public:
  EntryType placeholder(const TimelineProviderContext& context) override;
  void getSnapshot(const LocationSelectorIntent& configuration,
                   const TimelineProviderContext& context,
                   typename Base::SnapshotCompletion completion) override;
  void getTimeline(const LocationSelectorIntent& configuration,
                   const TimelineProviderContext& context,
                   typename Base::TimelineCompletion completion) override;

  static unsigned placeholderMask(WidgetFamily family) { return Provider::maskFor(family); }
  static platform::NSDate reloadDate(const AstronomyEntry& made, const EntryType&) {
    return made.refreshDate;
  }

  std::shared_ptr<LocationWrapper> locationWrapper = LocationWrapper::create();
  std::shared_ptr<events::WidgetAstrolib> astrolib = std::make_shared<events::WidgetAstrolib>();
};

/// Sample data: a fixed place in the given zone, now.
AstronomyEntry sampleEntry(events::WidgetAstrolib& astrolib, unsigned mask, ThemeStyleEnum theme,
                           const platform::NSTimeZone& zone);

/// Finds the configuration's place, computes its values and hands over what they make. Not called
/// when no answer about the location ever comes, or when the wrapper goes before it.
void makeTimelineEntry(std::shared_ptr<LocationWrapper> locationWrapper,
                       std::shared_ptr<events::WidgetAstrolib> astrolib,
                       const LocationSelectorIntent& configuration, unsigned mask,
                       std::function<void(const AstronomyEntry& entry)> deliver);

template <typename Provider, typename EntryType>
EntryType AstronomyProvider<Provider, EntryType>::placeholder(
    const TimelineProviderContext& context) {
  return Provider::entryOf(sampleEntry(*astrolib, Provider::placeholderMask(context.family),
                                       ThemeStyleEnum::themeSystem, {kSampleTimeZone}),
                           context.family);
}

template <typename Provider, typename EntryType>
void AstronomyProvider<Provider, EntryType>::getSnapshot(
    const LocationSelectorIntent& configuration, const TimelineProviderContext& context,
    typename Base::SnapshotCompletion completion) {
  completion(Provider::entryOf(
      sampleEntry(*astrolib, Provider::maskFor(context.family), themeStyleOf(configuration.theme),
                  platform::NSTimeZone::localTimeZone()),
      context.family));
}

template <typename Provider, typename EntryType>
void AstronomyProvider<Provider, EntryType>::getTimeline(
    const LocationSelectorIntent& configuration, const TimelineProviderContext& context,
    typename Base::TimelineCompletion completion) {
  makeTimelineEntry(
      locationWrapper, astrolib, configuration, Provider::maskFor(context.family),
      [family = context.family, completion = std::move(completion)](const AstronomyEntry& made) {
        EntryType entry = Provider::entryOf(made, family);
        const platform::NSDate reload = Provider::reloadDate(made, entry);
        completion({{std::move(entry)}, TimelineReloadPolicy::after(reload)});
      });
}

}  // namespace lumenquest::widgets
