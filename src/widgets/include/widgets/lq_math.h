#pragma once

#include <cmath>

namespace lumenquest::widgets {

/// Arithmetic of angles and ranges.
class LQMath {
 public:
  /// x reduced into [0, range), for a positive range; a negative x too gives a positive result.
  static double setRange(double x, double range) { return x - std::floor(x / range) * range; }
};

}  // namespace lumenquest::widgets
