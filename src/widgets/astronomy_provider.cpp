#include "widgets/astronomy_provider.h"

#include <utility>

#include "platform/localized_strings.h"
#include "platform/services.h"

namespace lumenquest::widgets {

using platform::CLAuthorizationStatus;
using platform::NSDate;
using platform::NSTimeZone;

namespace {

constexpr int kRefreshMinutes = 30;

NSDate RefreshDate(NSDate now) {
  return platform::Services::current().calendars().currentCalendar()->dateByAddingMinutes(
      now, kRefreshMinutes);
}

/// Puts the values for a place into the provider's calculator, and nothing else: what an earlier
/// request for another family computed must not stand beside them.
void Calculate(events::WidgetAstrolib& astrolib,
               const std::optional<platform::CLLocation>& location,
               const std::optional<NSTimeZone>& zone, unsigned mask) {
  astrolib = events::WidgetAstrolib();
  astrolib.setCurrentLocation(location);
  astrolib.setCurrentTimeZone(zone);
  if (location) astrolib.calculateData(mask);
}

}  // namespace

AstronomyEntry sampleEntry(events::WidgetAstrolib& astrolib, unsigned mask, ThemeStyleEnum theme,
                           const NSTimeZone& zone) {
  Calculate(astrolib, platform::CLLocation{kSampleCoordinate}, zone, mask);
  const NSDate now = NSDate::date();
  return {now,
          theme,
          {&astrolib, CLAuthorizationStatus::authorizedWhenInUse, samplePlaceName(), zone, true},
          RefreshDate(now)};
}

void makeTimelineEntry(std::shared_ptr<LocationWrapper> locationWrapper,
                       std::shared_ptr<events::WidgetAstrolib> astrolib,
                       const LocationSelectorIntent& configuration, unsigned mask,
                       std::function<void(const AstronomyEntry& entry)> deliver) {
  AstronomyEntry entry;
  entry.date = NSDate::date();
  entry.refreshDate = RefreshDate(entry.date);
  entry.theme = themeStyleOf(configuration.theme);
  entry.sources.isCurrentLocation = wantsCurrentLocation(&configuration);

  const auto status = std::make_shared<CLAuthorizationStatus>(CLAuthorizationStatus::notDetermined);
  const auto reportError = [](const std::string& description) {
    platform::Services::current().log().write(platform::stringWithFormat("%@", {description}));
  };
  // What waits in the wrapper must not hold it.
  locationWrapper->getLocation(
      &configuration, reportError, status,
      [astrolib = std::move(astrolib), status, entry, mask, deliver = std::move(deliver)](
          const std::optional<platform::CLLocation>& location,
          const std::optional<std::string>& address,
          const std::optional<std::string>& timeZone) mutable {
        RecordSources& sources = entry.sources;
        if (*status == CLAuthorizationStatus::denied) {
          sources.authorizationStatus = CLAuthorizationStatus::denied;
          sources.isCurrentLocation = true;
        } else {
          if (location) {
            sources.address = address;
            if (timeZone) sources.timeZone = NSTimeZone::timeZoneWithName(*timeZone);
          } else {
            sources.isCurrentLocation = true;
          }
          Calculate(*astrolib, location, sources.timeZone, mask);
          sources.calculator = astrolib.get();
        }
        deliver(entry);
      });
}

}  // namespace lumenquest::widgets
