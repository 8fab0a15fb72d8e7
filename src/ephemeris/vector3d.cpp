#include "ephemeris/vector3d.h"

#include <cmath>

#include "ephemeris/constants.h"

namespace ephemeris {

Vector3D::Vector3D(const PtPolar& polar)
    : phi_(polar.phi), theta_(polar.theta), r_(polar.r), polarValid_(true) {
  const double cosTheta = std::cos(polar.theta);
  x_ = polar.r * cosTheta * std::cos(polar.phi);
  y_ = polar.r * cosTheta * std::sin(polar.phi);
  z_ = polar.r * std::sin(polar.theta);
}

double Vector3D::operator[](pol_index component) {
  if (!polarValid_) {
    CalcPolarAngles();
    polarValid_ = true;
  }
  switch (component) {
    case pol_index::theta:
      return theta_;
    case pol_index::r:
      return r_;
    case pol_index::phi:
      break;
  }
  return phi_;
}

void Vector3D::CalcPolarAngles() {
  const double rhoSquared = x_ * x_ + y_ * y_;
  r_ = std::sqrt(rhoSquared + z_ * z_);

  phi_ = (x_ == 0.0 && y_ == 0.0) ? 0.0 : std::atan2(y_, x_);
  if (phi_ < 0.0) phi_ += kTwoPi;

  const double rho = std::sqrt(rhoSquared);
  theta_ = (z_ == 0.0 && rho == 0.0) ? 0.0 : std::atan2(z_, rho);
}

Vector3D Cross(const Vector3D& a, const Vector3D& b) {
  return Vector3D(a[index::y] * b[index::z] - a[index::z] * b[index::y],
                  a[index::z] * b[index::x] - a[index::x] * b[index::z],
                  a[index::x] * b[index::y] - a[index::y] * b[index::x]);
}

}  // namespace ephemeris
