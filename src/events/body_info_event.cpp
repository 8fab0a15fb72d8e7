#include "events/body_info_event.h"

#include <algorithm>
#include <utility>

#include "events/ephemeris_utils.h"
#include "events/moon_shadow.h"
#include "platform/formatters.h"
#include "platform/services.h"

namespace lumenquest::events {

BodyInfoEvent::BodyInfoEvent(double mjd, std::string andName)
    : name(std::move(andName)), mjd_(mjd) {}

void BodyInfoEvent::addSubevent(std::shared_ptr<BodyInfoEvent> event) {
  subevents_.push_back(std::move(event));
  sortEvents();
}

void BodyInfoEvent::sortEvents() {
  std::stable_sort(subevents_.begin(), subevents_.end(),
                   [](const auto& a, const auto& b) { return a->mjd() < b->mjd(); });
}

std::string BodyInfoEvent::timeString() const { return EphemerisUtils::mjdToString(mjd_); }

double BodyInfoEvent::mjdForSubeventAtPoint(platform::CGPoint point) const {
  const auto hit = std::find_if(subevents_.begin(), subevents_.end(),
                                [&](const auto& event) { return event->frame.contains(point); });
  return hit == subevents_.end() ? -1.0 : (*hit)->mjd();
}

void CelestialBodyEvent::setMjdRise(double mjd) {
  mjdRise_ = mjd;
  riseTimeInterval_ = EphemerisUtils::mjdToTimeInterval(mjd);
}

void CelestialBodyEvent::setMjdTransit(double mjd) {
  mjdTransit_ = mjd;
  transitTimeInterval_ = EphemerisUtils::mjdToTimeInterval(mjd);
}

void CelestialBodyEvent::setMjdSet(double mjd) {
  mjdSet_ = mjd;
  setTimeInterval_ = EphemerisUtils::mjdToTimeInterval(mjd);
}

platform::UIImage BodyInfoMoonEvent::moonPhaseImageWithWidth(double width) const {
  const auto moon = platform::Services::current().assets().imageNamed("moon");
  if (!moon) return {{width, width}, {}};
  platform::UIImage image = MoonShadow::drawShadowOnMoonImage(
      *moon, static_cast<double>(phaseData.zenithAngle), phaseData.shadowPhase(),
      static_cast<double>(phaseData.sunElevation), static_cast<double>(phaseData.phaseIllumination),
      false);
  platform::ImageContext context({width, width * image.size.height / image.size.width});
  context.drawImage(image, {0.0, 0.0, width, width * image.size.height / image.size.width}, {});
  return context.image();
}

BodyPathItem::BodyPathItem(double azimuth_, double elevation_, double mjd_, bool addTimeString)
    : azimuth(azimuth_), elevation(elevation_), mjd(mjd_) {
  if (!addTimeString) return;
  timeString_ = platform::Formatters::sharedInstance().shortTimeFormatter().stringFromDate(
      platform::NSDate::dateFromModifiedJulianDay(mjd_));
}

}  // namespace lumenquest::events
