#include "ephemeris/matrix3d.h"

#include <cmath>

namespace ephemeris {

Matrix3D Matrix3D::R_x(double angle) {
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  Matrix3D m;
  m.m_[0][0] = 1.0;
  m.m_[1][1] = c;
  m.m_[1][2] = s;
  m.m_[2][1] = -s;
  m.m_[2][2] = c;
  return m;
}

Matrix3D Matrix3D::R_z(double angle) {
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  Matrix3D m;
  m.m_[0][0] = c;
  m.m_[0][1] = s;
  m.m_[1][0] = -s;
  m.m_[1][1] = c;
  m.m_[2][2] = 1.0;
  return m;
}

Vector3D operator*(const Matrix3D& m, const Vector3D& v) {
  const double x = v[index::x];
  const double y = v[index::y];
  const double z = v[index::z];
  return Vector3D(m.m_[0][0] * x + m.m_[0][1] * y + m.m_[0][2] * z,
                  m.m_[1][0] * x + m.m_[1][1] * y + m.m_[1][2] * z,
                  m.m_[2][0] * x + m.m_[2][1] * y + m.m_[2][2] * z);
}

Matrix3D operator*(const Matrix3D& a, const Matrix3D& b) {
  Matrix3D c;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      c.m_[i][j] = a.m_[i][0] * b.m_[0][j] + a.m_[i][1] * b.m_[1][j] + a.m_[i][2] * b.m_[2][j];
    }
  }
  return c;
}

}  // namespace ephemeris
