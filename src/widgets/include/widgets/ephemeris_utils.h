#pragma once

#include <string>

#include "platform/ui_color.h"

namespace lumenquest::widgets {

/// From the records' numbers to what the views show.
class EphemerisUtils {
 public:
  /// Text of an event's time, in the zone and style of the shared short-time formatter: rounded to
  /// the minute, or down to the second when seconds are asked for. The three special values of the
  /// engine (ephemeris/constants.h) give their texts; an instant beyond the calendar gives the
  /// empty one.
  static std::string mjdToString(double mjd);
  static std::string mjdToString(double mjd, bool withSeconds);

  /// Colour of the Sun at an elevation in degrees. Each band excludes its lower bound and includes
  /// its upper one; what is not a number counts as night.
  static platform::UIColor sunColor(double elevation);
};

}  // namespace lumenquest::widgets
