#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "app/table.h"
#include "app/today_command.h"
#include "ephemeris/constants.h"
#include "events/ephemeris_utils.h"
#include "events/event_text.h"
#include "events/milky_way.h"
#include "platform/formatters.h"
#include "platform/localized_strings.h"
#include "platform/location_utils.h"
#include "platform/number_text.h"
#include "platform/services.h"

namespace lumenquest::app {

namespace {

using events::EphemerisUtils;
using platform::kTableEphemeris;
using platform::localizedString;
using platform::NSDate;
using platform::NSDateFormatterStyle;
using platform::numberText;
using platform::Services;
using platform::stringWithFormat;

constexpr const char* kNothing = "--";
constexpr float kHoursPerDay = 24.0f;

std::string EphemerisText(const char* key) { return localizedString(key, kTableEphemeris); }

std::string DateText(NSDate date, const platform::NSTimeZone& zone, const std::string& pattern) {
  const auto formatter = Services::current().formatters().dateFormatter(
      "", NSDateFormatterStyle::shortStyle, NSDateFormatterStyle::noStyle);
  if (!pattern.empty()) formatter->setDateFormat(pattern);
  formatter->setTimeZone(zone);
  return formatter->stringFromDate(date);
}

/// Time of an instant, with a mark when it belongs to yesterday or tomorrow.
std::string TimeText(const events::WidgetAstrolib& values, double mjd) {
  return events::eventText(mjd, values.mjdTodayAt0, values.mjdTomorrowAt0);
}

/// Rise and set in two rows; in one when the body does neither.
void AddRiseSet(Table& table, const events::WidgetAstrolib& values, const char* riseKey,
                const char* setKey, const char* bothKey, double rise, double set) {
  if (rise == set && !EphemerisUtils::drawEventAtMjd(rise)) {
    table.Row(appText(bothKey), EphemerisUtils::mjdToString(rise));
    return;
  }
  table.Row(appText(riseKey), TimeText(values, rise));
  table.Row(appText(setKey), TimeText(values, set));
}

/// One end of the galactic centre's window.
std::string GalacticCentreEnd(const TodayReport& report, const char* titleKey, double mjd,
                              double tilt) {
  const double azimuth = events::MilkyWay::azimuthOfGalacticCenter(report.location, mjd);
  // Due north is 0°, and not 360°.
  const double wholeDegrees = std::fmod(std::round(azimuth), 360.0);
  return stringWithFormat(
      appText("value_galactic_centre_end"),
      {EphemerisText(titleKey), TimeText(report.values, mjd), numberText(wholeDegrees, 0),
       platform::LocationUtils::cardinalNameForBearing(azimuth),
       numberText(tilt * ephemeris::kRadiansToDegrees, 0)});
}

void AddGalacticCentre(Table& table, const TodayReport& report) {
  const events::WidgetAstrolib& values = report.values;
  const std::string label = appText("row_galactic_centre");
  if (EphemerisUtils::drawEventAtMjd(values.mjdGcVisibilityStart)) {
    table.Row(label, GalacticCentreEnd(report, "gc_visibility_from", values.mjdGcVisibilityStart,
                                       values.gcVisibilityStartAngle));
    table.Row("", GalacticCentreEnd(report, "gc_visibility_to", values.mjdGcVisibilityEnd,
                                    values.gcVisibilityEndAngle));
  } else if (report.dateNextVisiblity) {
    const NSDate date = *report.dateNextVisiblity;
    table.Row(label, stringWithFormat(EphemerisText("gc_not_visible_until"),
                                      {DateText(date, report.timeZone, "EEEE"),
                                       DateText(date, report.timeZone, "")}));
  } else {
    table.Row(label, EphemerisText("body_always_invisible"));
  }
}

/// The place's date and time, to the minute like all times of the table.
std::string MomentText(const TodayReport& report) {
  const double mjd = report.instant.modifiedJulianDay();
  const NSDate minute = NSDate::dateFromModifiedJulianDay(mjd);
  // Before the year 1 a date needs its era.
  const char* fields = minute.ptDateTime().year < 1 ? "GyMMMMEEEEd" : "yMMMMEEEEd";
  const std::string pattern = Services::current().formatters().dateFormatFromTemplate(fields);
  return DateText(minute, report.timeZone, pattern) + ", " + EphemerisUtils::mjdToString(mjd);
}

}  // namespace

std::string todayText(const TodayReport& report) {
  platform::Formatters::sharedInstance().setTimeZone(report.timeZone);
  const events::WidgetAstrolib& values = report.values;
  std::string text =
      (report.title ? *report.title + "   " : "") +
      platform::LocationUtils::latLonStringWithCoordinate(report.location.coordinate) + "   " +
      report.timeZone.name + "\n" + MomentText(report) + "\n\n";

  Table table;
  const auto interval = [](const std::optional<std::string>& value) {
    return value && !value->empty() ? *value : kNothing;
  };

  table.Row(appText("row_light_now"), values.currentLightType);
  table.Row(appText("row_light_next"),
            values.nextEventName
                ? stringWithFormat(appText("value_light_at"),
                                   {*values.nextEventName, TimeText(values, values.nextEventMjd)})
                : kNothing);
  table.Gap();
  AddRiseSet(table, values, "row_sunrise", "row_sunset", "row_sunrise_sunset", values.mjdSunRise,
             values.mjdSunSet);
  table.Row(EphemerisText("twilight_golden_hour"), interval(values.goldenHourInterval));
  table.Row(EphemerisText("twilight_blue_hour"), interval(values.blueHourInterval));
  table.Row(EphemerisText("twilight_astronomical"), interval(values.astronomicalTwilightInterval));
  table.Gap();
  table.Row(appText("row_moon"), values.moonPhase.value_or(kNothing));
  AddRiseSet(table, values, "row_moonrise", "row_moonset", "row_moonrise_moonset",
             values.mjdMoonRise, values.mjdMoonSet);
  table.Gap();
  AddGalacticCentre(table, report);
  // High latitudes, a wrong zone and a day of 23 hours can make the hours absurd.
  const float hours = values.moonlessHours;
  table.Row(appText("row_moonless_hours"), hours >= 0.0f && hours <= kHoursPerDay
                                               ? EphemerisUtils::moonlessHoursText(hours)
                                               : kNothing);
  return text + table.Text();
}

}  // namespace lumenquest::app
