#include "app/today_command.h"

#include <memory>

#include "adapters/clocks.h"
#include "app/places_command.h"
#include "app/runtime.h"
#include "events/today_view_model.h"
#include "platform/calendar_zone.h"
#include "platform/formatters.h"

namespace lumenquest::app {

TodayReport computeToday(const platform::CLLocation& location,
                         const platform::NSTimeZone& timeZone) {
  TodayReport report;
  report.location = location;
  report.timeZone = timeZone;
  report.instant = platform::NSDate::date();

  report.values.setCurrentLocation(location);
  report.values.setCurrentTimeZone(timeZone);
  report.values.calculateData(events::WidgetDataSunLight | events::WidgetDataSunIntervals |
                              events::WidgetDataMoon | events::WidgetDataGalacticCenter);

  // The view model takes the shared calendar and formatters as it finds them.
  platform::Formatters::sharedInstance().setTimeZone(timeZone);
  const platform::CalendarZone calendarZone(timeZone);
  events::TodayViewModel model;
  model.setCurrentLocation(location);
  model.calculateNightData();
  report.dateNextVisiblity = model.dateNextVisiblity;
  return report;
}

std::string runToday(const TodayOptions& options) {
  const std::string locale = checkedLocale(options.locale);
  platform::CLLocation location;
  platform::NSTimeZone timeZone;
  std::optional<std::string> title;
  if (options.place) {
    if (options.latitude || options.longitude) {
      throw UsageError(appText("error_place_or_coordinate"));
    }
    const platform::CLPlacemark place = resolvePlace(*options.place, locale);
    location = *place.location;
    title = place.shortTitle();
    timeZone =
        options.timeZone || !place.timeZone ? parseTimeZone(options.timeZone) : *place.timeZone;
  } else {
    location = parseLocation(options.latitude, options.longitude);
    timeZone = parseTimeZone(options.timeZone);
  }
  const platform::NSDate instant = parseInstant(options.at);
  const OutputFormat format = parseFormat(options.format);

  // From here on the clock stands, so that all values are of one instant.
  installServices(locale, std::make_shared<adapters::FixedClock>(instant));
  TodayReport report = computeToday(location, timeZone);
  report.title = title;
  return format == OutputFormat::json ? todayJson(report) : todayText(report);
}

}  // namespace lumenquest::app
