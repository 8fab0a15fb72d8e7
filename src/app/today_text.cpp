#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "app/today_command.h"
#include "ephemeris/constants.h"
#include "events/ephemeris_utils.h"
#include "events/milky_way.h"
#include "platform/localized_strings.h"
#include "platform/services.h"

namespace lumenquest::app {

namespace {

using events::EphemerisUtils;
using platform::kTableEphemeris;
using platform::localizedString;
using platform::NSDate;
using platform::NSDateFormatterStyle;
using platform::Services;
using platform::stringWithFormat;

constexpr const char* kNothing = "--";
constexpr float kHoursPerDay = 24.0f;

std::string EphemerisText(const char* key) { return localizedString(key, kTableEphemeris); }

/// A number in the user's digits.
std::string Number(double number, int decimals) {
  platform::NumberStyle style;
  style.minimumFractionDigits = decimals;
  style.maximumFractionDigits = decimals;
  style.usesGroupingSeparator = false;
  return Services::current().formatters().numberFormatter("", style)->stringFromNumber(number);
}

std::string DateText(NSDate date, const platform::NSTimeZone& zone, const std::string& pattern) {
  const auto formatter = Services::current().formatters().dateFormatter(
      "", NSDateFormatterStyle::shortStyle, NSDateFormatterStyle::noStyle);
  if (!pattern.empty()) formatter->setDateFormat(pattern);
  formatter->setTimeZone(zone);
  return formatter->stringFromDate(date);
}

std::string CoordinateText(const platform::CLLocationCoordinate2D& coordinate) {
  const auto axis = [](double degrees, const char* positiveKey, const char* negativeKey) {
    return stringWithFormat("%@° %@", {Number(std::fabs(degrees), 4),
                                       EphemerisText(degrees < 0.0 ? negativeKey : positiveKey)});
  };
  return axis(coordinate.latitude, "cardinal_point_north_abbr", "cardinal_point_south_abbr") +
         ", " + axis(coordinate.longitude, "cardinal_point_east_abbr", "cardinal_point_west_abbr");
}

std::string CompassPoint(double azimuth) {
  static constexpr std::array<const char*, 8> keys{
      "cardinal_point_north_abbr", "cardinal_point_north_east_abbr",
      "cardinal_point_east_abbr",  "cardinal_point_south_east_abbr",
      "cardinal_point_south_abbr", "cardinal_point_south_west_abbr",
      "cardinal_point_west_abbr",  "cardinal_point_north_west_abbr"};
  const auto sector = static_cast<std::size_t>(std::lround(azimuth / 45.0)) % keys.size();
  return EphemerisText(keys[sector]);
}

/// Code points, which is columns for the words of our tables.
std::size_t Width(const std::string& utf8) {
  return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0u) != 0x80u;
  }));
}

/// Rows of a label and a value, in groups set apart by a blank line.
class Table {
 public:
  void Row(const std::string& label, const std::string& value) { rows_.emplace_back(label, value); }
  void Gap() { rows_.emplace_back(); }

  std::string Text() const {
    std::size_t width = 0;
    for (const auto& [label, value] : rows_) width = std::max(width, Width(label));
    std::string text;
    for (const auto& [label, value] : rows_) {
      if (!value.empty()) text += label + std::string(width - Width(label) + 3, ' ') + value;
      text += '\n';
    }
    return text;
  }

 private:
  std::vector<std::pair<std::string, std::string>> rows_;
};

/// One end of the galactic centre's window.
std::string GalacticCentreEnd(const TodayReport& report, const char* titleKey, double mjd,
                              double tilt) {
  const double azimuth = events::MilkyWay::azimuthOfGalacticCenter(report.location, mjd);
  return stringWithFormat(
      appText("value_galactic_centre_end"),
      {EphemerisText(titleKey), report.values.stringForMjd(mjd), Number(azimuth, 0),
       CompassPoint(azimuth), Number(tilt * ephemeris::kRadiansToDegrees, 0)});
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

}  // namespace

std::string todayText(const TodayReport& report) {
  const events::WidgetAstrolib& values = report.values;
  const std::string fullDate =
      Services::current().formatters().dateFormatFromTemplate("yMMMMEEEEd");
  std::string text = CoordinateText(report.location.coordinate) + "   " + report.timeZone.name +
                     "\n" + DateText(report.instant, report.timeZone, fullDate) + ", " +
                     EphemerisUtils::mjdToString(report.instant.modifiedJulianDay()) + "\n\n";

  Table table;
  const auto interval = [](const std::optional<std::string>& value) {
    return value && !value->empty() ? *value : kNothing;
  };
  const auto time = [&](double mjd) { return values.stringForMjd(mjd); };

  table.Row(appText("row_light_now"), values.currentLightType);
  table.Row(appText("row_light_next"),
            values.nextEventName
                ? stringWithFormat(appText("value_light_at"),
                                   {*values.nextEventName, time(values.nextEventMjd)})
                : kNothing);
  table.Gap();
  table.Row(appText("row_sunrise"), time(values.mjdSunRise));
  table.Row(appText("row_sunset"), time(values.mjdSunSet));
  table.Row(EphemerisText("twilight_golden_hour"), interval(values.goldenHourInterval));
  table.Row(EphemerisText("twilight_blue_hour"), interval(values.blueHourInterval));
  table.Row(EphemerisText("twilight_astronomical"), interval(values.astronomicalTwilightInterval));
  table.Gap();
  table.Row(appText("row_moon"), values.moonPhase.value_or(kNothing));
  table.Row(appText("row_moonrise"), time(values.mjdMoonRise));
  table.Row(appText("row_moonset"), time(values.mjdMoonSet));
  table.Gap();
  AddGalacticCentre(table, report);
  // High latitudes and a wrong zone can make the hours absurd.
  const float hours = values.moonlessHours;
  table.Row(appText("row_moonless_hours"), hours >= 0.0f && hours <= kHoursPerDay
                                               ? EphemerisUtils::moonlessHoursText(hours)
                                               : kNothing);
  return text + table.Text();
}

}  // namespace lumenquest::app
