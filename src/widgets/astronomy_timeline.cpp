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

}  // namespace

AstronomyEntry sampleEntry(const AstronomyTools& tools, unsigned mask, ThemeStyleEnum theme,
                           const NSTimeZone& zone) {
  tools.astrolib->setCurrentLocation(platform::CLLocation{kSampleCoordinate});
  tools.astrolib->setCurrentTimeZone(zone);
  tools.astrolib->calculateData(mask);
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
        } else if (location) {
          sources.address = address;
          if (timeZone) sources.timeZone = NSTimeZone::timeZoneWithName(*timeZone);
          tools.astrolib->setCurrentLocation(*location);
          tools.astrolib->setCurrentTimeZone(sources.timeZone);
          tools.astrolib->calculateData(mask);
          sources.calculator = tools.astrolib.get();
        } else {
          // A calculator of its own: the provider's still holds the values of an earlier place.
          static const events::WidgetAstrolib nowhere;
          sources.calculator = &nowhere;
          sources.isCurrentLocation = true;
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
