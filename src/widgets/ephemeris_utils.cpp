#include "widgets/ephemeris_utils.h"

#include <array>
#include <optional>

#include "ephemeris/constants.h"
#include "platform/formatters.h"
#include "platform/localized_strings.h"
#include "widgets/palette.h"
#include "widgets/universal_time_dates.h"

namespace lumenquest::widgets {

namespace {

using platform::kTableEphemeris;
using platform::localizedString;
using platform::NSDateFormatter;
using platform::NSDateFormatterStyle;

/// Gives a formatter another time style while it lives.
class TimeStyle {
 public:
  TimeStyle(NSDateFormatter& formatter, NSDateFormatterStyle style)
      : formatter_(formatter), own_(formatter.timeStyle()) {
    formatter_.setTimeStyle(style);
  }
  ~TimeStyle() { formatter_.setTimeStyle(own_); }
  TimeStyle(const TimeStyle&) = delete;
  TimeStyle& operator=(const TimeStyle&) = delete;

 private:
  NSDateFormatter& formatter_;
  NSDateFormatterStyle own_;
};

/// The Sun's colour above an elevation, degrees.
struct SunBand {
  double above;
  platform::UIColor color;
};

constexpr std::array<SunBand, 5> kSunBands{{
    {6.0, palette::kLumenquestYellow},
    {-4.0, palette::kGoldenHourLayerColor},
    {-6.0, palette::kCivilTwiligthLayerColor},
    {-12.0, palette::kNauticalTwilightLayerColor},
    {-18.0, palette::kAstronomicalTwilightLayerColor},
}};

}  // namespace

std::string EphemerisUtils::mjdToString(double mjd) { return mjdToString(mjd, false); }

std::string EphemerisUtils::mjdToString(double mjd, bool withSeconds) {
  if (mjd == ephemeris::kMjdNoRiseOrSet) {
    return localizedString("event_no_rise_set", kTableEphemeris);
  }
  if (mjd == ephemeris::kMjdCircumpolar) {
    return localizedString("body_circumpolar", kTableEphemeris);
  }
  if (mjd == ephemeris::kMjdAlwaysInvisible) {
    return localizedString("body_always_invisible", kTableEphemeris);
  }
  const std::optional<platform::NSDate> date = fromModifiedJulianDate(mjd, withSeconds);
  if (!date) return "";
  NSDateFormatter& formatter = platform::Formatters::sharedInstance().shortTimeFormatter();
  if (!withSeconds) return formatter.stringFromDate(*date);
  const TimeStyle style(formatter, NSDateFormatterStyle::mediumStyle);
  return formatter.stringFromDate(*date);
}

platform::UIColor EphemerisUtils::sunColor(double elevation) {
  for (const SunBand& band : kSunBands) {
    if (elevation > band.above) return band.color;
  }
  return palette::kNight;
}

}  // namespace lumenquest::widgets
