#pragma once

#include <cmath>
#include <cstdint>

#include "ephemeris/constants.h"

namespace ephemeris {

/// Small numeric functions shared by the series and the event search.
class PtMath {
 public:
  /// Cosine and sine of a sum of two angles from the cosines and sines of the parts. It steps the
  /// multiples of an angle through a series without a trigonometric call per term. The outputs may
  /// be the same variables as the inputs.
  static void AdditionTheorem(double c1, double s1, double c2, double s2, double* c, double* s) {
    const double cosine = c1 * c2 - s1 * s2;
    const double sine = s1 * c2 + c1 * s2;
    *c = cosine;
    *s = sine;
  }

  /// Examines the parabola through (−1, yMinus), (0, y0), (+1, yPlus) on the interval −1…+1.
  ///
  /// `xe`, `ye` is the extremum (infinite or NaN for collinear points); `nRoot` the number of roots
  /// with |root| ≤ 1. With one root inside, it is `root1`; with two, root1 < root2. Without real
  /// roots `root1` and `root2` are left untouched.
  static void QuadraticInterpolation(double yMinus, double y0, double yPlus, double& xe, double& ye,
                                     double& root1, double& root2, int& nRoot);

  /// Signed difference a − b of two angles in degrees, in [−180, +180).
  static double AngleDifference(double a, double b);

  /// x rounded to a whole number toward zero and downward, without the library call that compilers
  /// make of it on the oldest processors of the architecture; the results are the library's.
  static double Trunc(double x) {
    if (!(std::fabs(x) < kIntegerRange)) return std::trunc(x);
    return static_cast<double>(static_cast<std::int64_t>(x));
  }
  static double Floor(double x) {
    const double truncated = Trunc(x);
    return truncated > x ? truncated - 1.0 : truncated;
  }

  /// The fraction of x above its floor, in [0, 1).
  static double Frac(double x) { return x - Floor(x); }

  /// x reduced to [0, 2π] by whole turns.
  static double NormalizeRadians(double x) { return x - kTwoPi * Floor(x / kTwoPi); }

 private:
  /// Every double of this magnitude or more is whole.
  static constexpr double kIntegerRange = 4503599627370496.0;
};

}  // namespace ephemeris
