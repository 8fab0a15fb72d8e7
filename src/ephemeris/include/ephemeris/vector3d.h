#pragma once

#include "ephemeris/pt_polar.h"

namespace ephemeris {

/// Selects a Cartesian component of a Vector3D.
enum class index { x = 0, y = 1, z = 2 };

/// Selects a polar component of a Vector3D.
enum class pol_index { phi = 0, theta = 1, r = 2 };

/// A vector in three dimensions, with its polar form worked out when it is first asked for.
///
/// Polar angles are radians: phi in [0, 2π), theta in [−π/2, π/2]. A vector made from a polar
/// triple keeps that triple as given, also outside these ranges.
class Vector3D {
 public:
  Vector3D() = default;
  Vector3D(double x, double y, double z) : x_(x), y_(y), z_(z) {}
  explicit Vector3D(const PtPolar& polar);

  double operator[](index component) const {
    switch (component) {
      case index::x:
        return x_;
      case index::y:
        return y_;
      case index::z:
        break;
    }
    return z_;
  }
  double operator[](pol_index component);

  /// Recomputes the polar components from the Cartesian ones.
  void CalcPolarAngles();

 private:
  double x_ = 0.0;
  double y_ = 0.0;
  double z_ = 0.0;
  double phi_ = 0.0;
  double theta_ = 0.0;
  double r_ = 0.0;
  bool polarValid_ = false;
};

/// The cross product a × b.
Vector3D Cross(const Vector3D& a, const Vector3D& b);

}  // namespace ephemeris
