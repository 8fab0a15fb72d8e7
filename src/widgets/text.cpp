#include "widgets/text.h"

#include "events/ephemeris_utils.h"
#include "platform/formatters.h"
#include "platform/localized_strings.h"
#include "widgets/ephemeris_utils.h"

namespace lumenquest::widgets {

platform::NSTimeZone zoneOf(const LocationWidgetData& data) {
  return data.timeZone ? *data.timeZone : platform::NSTimeZone::localTimeZone();
}

std::string eventTimeText(double mjd, double mjdTomorrowAt0, const LocationWidgetData& data) {
  platform::Formatters::sharedInstance().setTimeZone(zoneOf(data));
  std::string text = EphemerisUtils::mjdToString(mjd);
  if (events::EphemerisUtils::drawEventAtMjd(mjd) && mjd >= mjdTomorrowAt0) {
    text += " " + platform::localizedString("event_one_day_plus", platform::kTableEphemeris);
  }
  return text;
}

std::string spokenLine(const std::string& heading, const std::string& value) {
  return platform::stringWithFormat(
      platform::localizedString("spoken_value", platform::kTableEphemeris), {heading, value});
}

std::string spokenTime(const std::string& text) {
  const std::string mark =
      " " + platform::localizedString("event_one_day_plus", platform::kTableEphemeris);
  if (!text.ends_with(mark)) return text;
  return platform::stringWithFormat(
      platform::localizedString("spoken_next_day", platform::kTableEphemeris),
      {text.substr(0, text.size() - mark.size())});
}

}  // namespace lumenquest::widgets
