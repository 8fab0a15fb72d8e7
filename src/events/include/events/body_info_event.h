#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "events/moon_phase_result.h"
#include "platform/core_graphics.h"
#include "platform/drawing.h"
#include "platform/named_color.h"
#include "platform/ns_date.h"

namespace lumenquest::events {

/// A named event of a body.
class BodyInfoEvent {
 public:
  BodyInfoEvent(double mjd, std::string andName);
  virtual ~BodyInfoEvent() = default;

  double mjd() const { return mjd_; }

  /// Events grouped under this one, in order of time.
  const std::vector<std::shared_ptr<BodyInfoEvent>>& subevents() const { return subevents_; }
  void addSubevent(std::shared_ptr<BodyInfoEvent> event);
  void sortEvents();

  /// The event's time of day.
  std::string timeString() const;

  /// MJD of the first subevent drawn at the point, or −1.
  double mjdForSubeventAtPoint(platform::CGPoint point) const;

  /// Set by views.
  bool isActive = false;
  std::string name;
  std::optional<std::string> subtitle;
  /// Where a view drew the event.
  platform::CGRect frame;

 private:
  double mjd_;
  std::vector<std::shared_ptr<BodyInfoEvent>> subevents_;
};

/// A change of light.
class BodyInfoSunEvent final : public BodyInfoEvent {
 public:
  using BodyInfoEvent::BodyInfoEvent;
  platform::NamedColor bodyColor;
};

/// An event of the Moon, with its look at that time.
class BodyInfoMoonEvent final : public BodyInfoEvent {
 public:
  using BodyInfoEvent::BodyInfoEvent;
  /// The Moon with its shadow, so many points wide; nothing to see when the bundle lacks its
  /// picture.
  platform::UIImage moonPhaseImageWithWidth(double width) const;
  MoonPhaseResult phaseData;
};

/// An event of the galactic centre.
class BodyInfoMilkyWayEvent final : public BodyInfoEvent {
 public:
  using BodyInfoEvent::BodyInfoEvent;
  /// Tilt of the galactic band, radians.
  double galacticCenterAngle = 0.0;
};

/// A body's rise, transit and set on one day.
class CelestialBodyEvent {
 public:
  double mjdRise() const { return mjdRise_; }
  double mjdTransit() const { return mjdTransit_; }
  double mjdSet() const { return mjdSet_; }
  void setMjdRise(double mjd);
  void setMjdTransit(double mjd);
  void setMjdSet(double mjd);

  /// Seconds since the platform's reference date.
  double riseTimeInterval() const { return riseTimeInterval_; }
  double transitTimeInterval() const { return transitTimeInterval_; }
  double setTimeInterval() const { return setTimeInterval_; }

  /// Degrees.
  double riseAzimuth = 0.0;
  double setAzimuth = 0.0;
  /// MJD of the day.
  double date = 0.0;

 private:
  double riseTimeInterval_ = 0.0;
  double transitTimeInterval_ = 0.0;
  double setTimeInterval_ = 0.0;
  double mjdRise_ = 0.0;
  double mjdTransit_ = 0.0;
  double mjdSet_ = 0.0;
};

/// One point of a body's path across the sky.
class BodyPathItem {
 public:
  /// Azimuth and elevation in degrees.
  BodyPathItem(double azimuth, double elevation, double mjd, bool addTimeString);

  const std::optional<std::string>& timeString() const { return timeString_; }

  bool isMainPoint = false;
  bool isRise = false;
  bool isSet = false;
  /// The path is interrupted after this point.
  bool breakPath = false;
  double azimuth;
  double elevation;
  double mjd;

 private:
  std::optional<std::string> timeString_;
};

}  // namespace lumenquest::events
