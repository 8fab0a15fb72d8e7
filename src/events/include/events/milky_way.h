#pragma once

#include <optional>

#include "ephemeris/pt_milky_way.h"
#include "ephemeris/pt_sun.h"
#include "platform/core_location.h"
#include "platform/ns_date.h"

namespace lumenquest::events {

/// When the galactic centre is up during a night. MJD; kMjdAlwaysInvisible in both when it is not.
struct MilkyWayEvent {
  int visibilityType = 0;
  /// An older spelling of the same field; nothing reads or writes it.
  int visiblityType = 0;
  double mjdVisibilityFrom = 0.0;
  double mjdVisibilityTo = 0.0;
  /// Degrees. Carried for views; not set here.
  double visibilityFromAzimuth = 0.0;
  double visibilityFromElevation = 0.0;
  double visibilityToAzimuth = 0.0;
  double visibilityToElevation = 0.0;
};

/// The galactic centre over a place: tonight, and the next night on which it shows.
class MilkyWay {
 public:
  /// The part of the night in which the centre is up: the night going on at `atDate` before the
  /// morning's nautical dawn, the coming one after it. A night lasts from −18° to −18°.
  MilkyWayEvent calculateGalacticCenterVisibility(ephemeris::PtMilkyWay& milkyWay,
                                                  ephemeris::PtSun& withSun,
                                                  platform::NSDate atDate) const;

  /// The first of the next 180 days on which the centre is visible. Nothing beyond them, and
  /// nothing north of 58°, where it never clears the horizon at night.
  std::optional<platform::NSDate> nextDateGalacticCenterIsVisible(ephemeris::PtMilkyWay& milkyWay,
                                                                  ephemeris::PtSun& sun,
                                                                  platform::NSDate atDate) const;

  /// Azimuth of the centre in degrees, 0 north, 90 east.
  static double azimuthOfGalacticCenter(const platform::CLLocation& location, double mjd);
};

}  // namespace lumenquest::events
