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

}  // namespace lumenquest::widgets
