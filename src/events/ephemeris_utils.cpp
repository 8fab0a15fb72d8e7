#include "events/ephemeris_utils.h"

#include <array>
#include <cmath>

#include "ephemeris/constants.h"
#include "platform/formatters.h"
#include "platform/localized_strings.h"
#include "platform/ns_string.h"

namespace lumenquest::events {

namespace {

using ephemeris::kMjdAlwaysInvisible;
using ephemeris::kMjdCircumpolar;
using ephemeris::kMjdNoRiseOrSet;
using platform::kTableEphemeris;
using platform::localizedString;
using platform::NamedColor;
using platform::NSDate;
using platform::stringByReplacingOccurrences;
using platform::stringWithFormat;

/// One phase of light, down to but not including its lower bound of elevation (degrees).
struct LightBand {
  double above;
  const char* nameKey;
  const char* color;
};

constexpr std::array<LightBand, 5> kLightBands{{
    {6.0, "light_daytime", "lumenquestYellow"},
    {-4.0, "twilight_golden_hour", "goldenHourLayerColor"},
    {-6.0, "twilight_blue_hour", "civilTwiligthLayerColor"},
    {-12.0, "light_nautical", "nauticalTwilightLayerColor"},
    {-18.0, "light_astronomical", "astronomicalTwilightLayerColor"},
}};

/// Null at night.
const LightBand* LightBandAt(double elevation) {
  for (const LightBand& band : kLightBands) {
    if (elevation > band.above) return &band;
  }
  return nullptr;
}

bool IsOpenEnd(double mjd) { return mjd == 0.0 || mjd == kMjdNoRiseOrSet; }

std::string DayPlus() { return localizedString("event_one_day_plus", kTableEphemeris); }
std::string DayMinus() { return localizedString("event_one_day_minus", kTableEphemeris); }

/// "a. m." becomes "am".
std::string CleanedHalfDay(const std::string& symbol) {
  return stringByReplacingOccurrences(stringByReplacingOccurrences(symbol, "\u00A0", ""), ".", "");
}

}  // namespace

std::string EphemerisUtils::mjdToString(double mjd) { return mjdToString(mjd, false); }

std::string EphemerisUtils::mjdToString(double mjd, bool withSeconds) {
  if (mjd == kMjdNoRiseOrSet) return localizedString("event_no_rise_set", kTableEphemeris);
  if (mjd == kMjdCircumpolar) return localizedString("body_circumpolar", kTableEphemeris);
  if (mjd == kMjdAlwaysInvisible) return localizedString("body_always_invisible", kTableEphemeris);

  const NSDate date = NSDate::dateFromModifiedJulianDay(mjd, withSeconds);
  platform::NSDateFormatter& formatter =
      platform::Formatters::sharedInstance().shortTimeFormatter();
  if (!withSeconds) return formatter.stringFromDate(date);

  const platform::NSDateFormatterStyle style = formatter.timeStyle();
  formatter.setTimeStyle(platform::NSDateFormatterStyle::mediumStyle);
  std::string text = formatter.stringFromDate(date);
  formatter.setTimeStyle(style);
  return text;
}

std::string EphemerisUtils::stringForMjd(double mjd, double azimuth) {
  const std::string format =
      drawEventAtMjd(mjd) ? localizedString("body_rise_set_event", kTableEphemeris) : "%@";
  return stringWithFormat(format, {mjdToString(mjd), azimuth});
}

std::string EphemerisUtils::stringForMjd(double mjd, double mjdTodayAt0, double mjdTomorrowAt0) {
  std::string text = mjdToString(mjd);
  if (mjd >= mjdTomorrowAt0) {
    text += stringWithFormat(" %@", {DayPlus()});
  } else if (mjd < mjdTodayAt0) {
    text += stringWithFormat(" %@", {DayMinus()});
  }
  return text;
}

std::string EphemerisUtils::stringForIntervalMjdStart(double mjdStart, double mjdEnd) {
  return concatCleaningAmPmStrings(IsOpenEnd(mjdStart) ? "(-1)" : mjdToString(mjdStart),
                                   IsOpenEnd(mjdEnd) ? "(+1)" : mjdToString(mjdEnd));
}

std::string EphemerisUtils::stringForIntervalMjdStart(double mjdStart, double mjdEnd,
                                                      double mjdTodayAt0, double mjdTomorrowAt0) {
  const std::string plus = DayPlus();
  const std::string minus = DayMinus();
  std::string start =
      IsOpenEnd(mjdStart) ? minus : stringForMjd(mjdStart, mjdTodayAt0, mjdTomorrowAt0);
  const std::string end =
      IsOpenEnd(mjdEnd) ? plus : stringForMjd(mjdEnd, mjdTodayAt0, mjdTomorrowAt0);
  if (hasRepeatedPlusMinsOneDayStart(start, end)) {
    start = stringByReplacingOccurrences(start, " " + plus, "");
    start = stringByReplacingOccurrences(start, " " + minus, "");
  }
  return concatCleaningAmPmStrings(start, end);
}

std::string EphemerisUtils::concatCleaningAmPmStrings(const std::string& startMjdString,
                                                      const std::string& endMjdString) {
  const platform::NSDateFormatter& formatter =
      platform::Formatters::sharedInstance().shortTimeFormatter();
  const std::string amSymbol = formatter.AMSymbol();
  const std::string pmSymbol = formatter.PMSymbol();
  const std::string am = CleanedHalfDay(amSymbol);
  const std::string pm = CleanedHalfDay(pmSymbol);

  const auto withCleanedSymbols = [&](const std::string& text) {
    return stringByReplacingOccurrences(stringByReplacingOccurrences(text, amSymbol, am), pmSymbol,
                                        pm);
  };
  std::string start = withCleanedSymbols(startMjdString);
  const std::string end = withCleanedSymbols(endMjdString);

  const auto bothContain = [&](const std::string& symbol) {
    return platform::containsString(start, symbol) && platform::containsString(end, symbol);
  };
  if (bothContain(am) || bothContain(pm)) {
    start = stringByReplacingOccurrences(stringByReplacingOccurrences(start, am, ""), pm, "");
    start = platform::stringByTrimmingWhitespace(start);
  }
  return stringWithFormat("%@ - %@", {start, platform::stringByTrimmingWhitespace(end)});
}

bool EphemerisUtils::hasRepeatedPlusMinsOneDayStart(const std::string& start,
                                                    const std::string& end) {
  const auto bothContain = [&](const std::string& mark) {
    return platform::containsString(start, mark) && platform::containsString(end, mark);
  };
  return bothContain(DayPlus()) || bothContain(DayMinus());
}

bool EphemerisUtils::drawEventAtMjd(double mjd) {
  return mjd != kMjdNoRiseOrSet && mjd != kMjdCircumpolar && mjd != kMjdAlwaysInvisible;
}

double EphemerisUtils::mjdToTimeInterval(double mjd) {
  return NSDate::dateFromModifiedJulianDay(mjd).timeIntervalSinceReferenceDate();
}

float EphemerisUtils::hoursBetweenStartMjd(double mjdStart, double andEndMjd) {
  if (mjdStart == kMjdCircumpolar) return 24.0f;
  if (mjdStart == kMjdAlwaysInvisible || mjdStart == kMjdNoRiseOrSet) return 0.0f;
  double mjdEnd = andEndMjd;
  if (mjdEnd == kMjdCircumpolar || mjdEnd == kMjdNoRiseOrSet) {
    const NSDate start = NSDate::dateFromModifiedJulianDay(mjdStart);
    mjdEnd = NSDate::dateWithEndDateTime(start).modifiedJulianDay();
  }
  return static_cast<float>((mjdEnd - mjdStart) * 24.0);
}

std::string EphemerisUtils::lightTypeForSunElevation(double elevation) {
  const LightBand* band = LightBandAt(elevation);
  return localizedString(band ? band->nameKey : "light_nighttime", kTableEphemeris);
}

NamedColor EphemerisUtils::colorForSunElevation(double elevation) {
  const LightBand* band = LightBandAt(elevation);
  return band ? NamedColor{band->color, 1.0} : NamedColor{"lumenquestYellow", 0.2};
}

}  // namespace lumenquest::events
