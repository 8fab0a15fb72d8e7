#include "widgets/astronomy_timeline.h"

#include <utility>

#include "platform/assertion.h"
#include "platform/localized_strings.h"
#include "platform/services.h"
#include "widgets/lq_date_time.h"

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
void Calculate(const AstronomyTools& tools, const std::optional<platform::CLLocation>& location,
               const std::optional<NSTimeZone>& zone, unsigned mask) {
  *tools.astrolib = events::WidgetAstrolib();
  tools.astrolib->setCurrentLocation(location);
  tools.astrolib->setCurrentTimeZone(zone);
  if (location) tools.astrolib->calculateData(mask);
}

}  // namespace

AstronomyEntry sampleEntry(const AstronomyTools& tools, unsigned mask, ThemeStyleEnum theme,
                           const NSTimeZone& zone) {
  Calculate(tools, platform::CLLocation{kSampleCoordinate}, zone, mask);
  const NSDate now = NSDate::date();
  return {now,
          theme,
          {tools.astrolib.get(), CLAuthorizationStatus::authorizedWhenInUse, samplePlaceName(),
           zone, true},
          RefreshDate(now)};
}

void makeTimelineEntry(const AstronomyTools& tools, const LocationSelectorIntent& configuration,
                       unsigned mask, std::function<void(const AstronomyEntry& entry)> deliver) {
  AstronomyEntry entry;
  entry.date = NSDate::date();
  entry.refreshDate = RefreshDate(entry.date);
  entry.theme = themeStyleOf(configuration.theme);
  entry.sources.isCurrentLocation = wantsCurrentLocation(&configuration);

  const auto status = std::make_shared<CLAuthorizationStatus>(CLAuthorizationStatus::notDetermined);
  const auto reportError = [](const std::string& description) {
    platform::Services::current().log().write(platform::stringWithFormat("%@", {description}));
  };
  tools.locationWrapper->getLocation(
      &configuration, reportError, status,
      [tools, status, entry, mask, deliver = std::move(deliver)](
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
          Calculate(tools, location, sources.timeZone, mask);
          sources.calculator = tools.astrolib.get();
        }
        deliver(entry);
      });
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
