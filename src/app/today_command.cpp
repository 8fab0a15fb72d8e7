#include "app/today_command.h"

#include <memory>

#include "adapters/clocks.h"
#include "adapters/icu_services.h"
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
  std::string locale = adapters::environmentLocale();
  if (options.locale) {
    const std::optional<std::string> known = adapters::localeIdentifier(*options.locale);
    if (!known) throwBadOption("--locale", *options.locale, "expect_locale");
    locale = *known;
  }
  const platform::CLLocation location = parseLocation(options.latitude, options.longitude);
  const platform::NSTimeZone timeZone = parseTimeZone(options.timeZone);
  const platform::NSDate instant = parseInstant(options.at);
  const OutputFormat format = parseFormat(options.format);

  // From here on the clock stands, so that all values are of one instant.
  installServices(locale, std::make_shared<adapters::FixedClock>(instant));
  const TodayReport report = computeToday(location, timeZone);
  return format == OutputFormat::json ? todayJson(report) : todayText(report);
}

}  // namespace lumenquest::app
