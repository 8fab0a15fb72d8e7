#pragma once

#include "ephemeris/vector3d.h"

namespace ephemeris {

/// A 3×3 matrix, row-major; here always a rotation of the coordinate frame.
///
/// The rotations are passive: R_x(ε) applied to an equatorial vector gives ecliptic coordinates,
/// R_x(−ε) leads back.
class Matrix3D {
 public:
  /// Rotation of the frame about the x axis, angle in radians.
  static Matrix3D R_x(double angle);
  /// Rotation of the frame about the z axis, angle in radians.
  static Matrix3D R_z(double angle);

  friend Vector3D operator*(const Matrix3D& m, const Vector3D& v);
  friend Matrix3D operator*(const Matrix3D& a, const Matrix3D& b);

 private:
  double m_[3][3] = {};
};

}  // namespace ephemeris
