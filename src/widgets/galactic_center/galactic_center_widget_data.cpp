#include "widgets/galactic_center/galactic_center_widget_data.h"

#include <cmath>
#include <cstdint>

#include "ephemeris/constants.h"
#include "events/ephemeris_utils.h"
#include "events/milky_way.h"
#include "platform/assertion.h"
#include "platform/localized_strings.h"
#include "platform/location_utils.h"
#include "platform/services.h"
#include "widgets/text.h"

namespace lumenquest::widgets {

using platform::kTableCommon;
using platform::kTableEphemeris;
using platform::localizedString;
using platform::stringWithFormat;

namespace {

bool IsInstant(double mjd) { return mjd != 0.0 && events::EphemerisUtils::drawEventAtMjd(mjd); }

}  // namespace

GalacticCenterWidgetData::GalacticCenterWidgetData(const RecordSources& sources)
    : locationData(sources.locationData()) {
  const events::WidgetAstrolib* const calculator = sources.calculator;
  if (calculator == nullptr) return;
  mjdTomorrowAt0 = calculator->mjdTomorrowAt0;
  mjdVisibilityFrom = calculator->mjdGcVisibilityStart;
  visibilityFromAngle = calculator->gcVisibilityStartAngle * ephemeris::kRadiansToDegrees;
  mjdVisibilityTo = calculator->mjdGcVisibilityEnd;
  visibilityToAngle = calculator->gcVisibilityEndAngle * ephemeris::kRadiansToDegrees;
  moonlessHours = calculator->moonlessHours;
  dateNextVisibility = calculator->dateNextVisiblity;
  if (const auto& location = calculator->currentLocation()) {
    const auto azimuthAt = [&](double mjd) {
      return IsInstant(mjd) ? events::MilkyWay::azimuthOfGalacticCenter(*location, mjd) : 0.0;
    };
    visibilityFromAzimuth = azimuthAt(mjdVisibilityFrom);
    visibilityToAzimuth = azimuthAt(mjdVisibilityTo);
  }
}

bool GalacticCenterWidgetData::hasWindow() const { return IsInstant(mjdVisibilityFrom); }

namespace {

/// "178° S"
std::string AzimuthText(double azimuth) {
  const double whole = std::fmod(std::round(azimuth), 360.0);
  return stringWithFormat("%d° %@", {static_cast<std::int64_t>(whole),
                                     platform::LocationUtils::cardinalNameForBearing(azimuth)});
}

/// Weekday and short date, in the place's zone.
std::string NextVisibleText(const GalacticCenterWidgetData& data) {
  const auto formatter = platform::Services::current().formatters().dateFormatter(
      "", platform::NSDateFormatterStyle::shortStyle, platform::NSDateFormatterStyle::noStyle);
  formatter->setTimeZone(zoneOf(data.locationData));
  const std::string date = formatter->stringFromDate(*data.dateNextVisibility);
  formatter->setDateFormat("EEEE");
  return stringWithFormat(localizedString("gc_not_visible_until", kTableEphemeris),
                          {formatter->stringFromDate(*data.dateNextVisibility), date});
}

}  // namespace

GCVisibilityContent gcVisibilityContent(const GalacticCenterWidgetData& data, WidgetFamily family) {
  GCVisibilityContent content;
  if (data.hasWindow()) {
    const bool isSmall = family == WidgetFamily::systemSmall;
    const auto title = [&](const char* small, const char* other) {
      return localizedString(isSmall ? small : other, kTableEphemeris);
    };
    content.window = {
        {true, title("gc_visibility_from", "gc_visible_from"),
         eventTimeText(data.mjdVisibilityFrom, data.mjdTomorrowAt0, data.locationData),
         AzimuthText(data.visibilityFromAzimuth), data.visibilityFromAngle},
        {false, title("gc_visibility_to", "gc_visible_to"),
         eventTimeText(data.mjdVisibilityTo, data.mjdTomorrowAt0, data.locationData),
         // A window without an end has no direction there.
         IsInstant(data.mjdVisibilityTo) ? AzimuthText(data.visibilityToAzimuth) : std::string(),
         data.visibilityToAngle}};
  } else {
    const bool isNever = data.mjdVisibilityFrom == ephemeris::kMjdAlwaysInvisible;
    const bool hasValues = data.mjdVisibilityFrom != 0.0;
    if (isNever || (hasValues && !data.dateNextVisibility)) {
      content.alwaysInvisible = localizedString("body_always_invisible", kTableEphemeris);
    }
    if (data.dateNextVisibility) content.notVisibleUntil = NextVisibleText(data);
  }
  if (family == WidgetFamily::systemLarge) {
    content.moonlessHoursTitle = localizedString("night_with_no_moon", kTableEphemeris);
    content.moonlessHours = moonlessHoursText(data.moonlessHours);
  }
  return content;
}

std::string moonlessHoursText(float moonlessHours) {
  // Single precision throughout, as the record has it.
  constexpr float kBeyondInteger = 9223372036854775808.0f;
  LUMENQUEST_ASSERT(moonlessHours >= -kBeyondInteger && moonlessHours < kBeyondInteger);
  const auto hours = static_cast<std::int64_t>(moonlessHours);
  const float rounded = std::round((moonlessHours - static_cast<float>(hours)) * 60.0f);
  LUMENQUEST_ASSERT(rounded >= -kBeyondInteger && rounded < kBeyondInteger);
  const auto minutes = static_cast<std::int64_t>(rounded);
  const std::string hourUnit = localizedString("unit_abbr_hour", kTableCommon);
  const std::string minuteUnit = localizedString("unit_abbr_minute", kTableCommon);
  if (hours == 0 && minutes == 0) return "0" + hourUnit;
  if (hours == 0) return stringWithFormat("%d%@", {minutes, minuteUnit});
  if (minutes == 0) return stringWithFormat("%d%@", {hours, hourUnit});
  return stringWithFormat("%d%@ %d%@", {hours, hourUnit, minutes, minuteUnit});
}

}  // namespace lumenquest::widgets
