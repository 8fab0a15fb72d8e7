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

namespace {

struct TodayOptions {
  PlaceOptions place;
  OptionText at;
  OptionText locale;
  OptionText format;
};

std::string RunToday(const TodayOptions& options) {
  const std::string locale = checkedLocale(options.locale);
  const ChosenPlace place = choosePlace(options.place, locale);
  const platform::NSDate instant = parseInstant(options.at);
  const OutputFormat format = parseFormat(options.format);

  // From here on the clock stands, so that all values are of one instant.
  installServices({locale, std::make_shared<adapters::FixedClock>(instant)});
  TodayReport report = computeToday(place.location, place.timeZone);
  report.title = place.title;
  return format == OutputFormat::json ? todayJson(report) : todayText(report);
}

}  // namespace

void addTodayCommand(CommandSet& commands) {
  TodayOptions& o = commands.Keep<TodayOptions>();
  commands.Add("today", {"help_usage_today", "help_today", "help_today_examples"},
               {placeOption(o.place.place), latitudeOption(o.place.latitude),
                longitudeOption(o.place.longitude), timeZoneOption(o.place.timeZone),
                atOption(o.at), localeOption(o.locale), formatOption(o.format)},
               [&o] { return RunToday(o); });
}

}  // namespace lumenquest::app
