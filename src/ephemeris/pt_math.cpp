#include "ephemeris/pt_math.h"

#include <cmath>

namespace ephemeris {

void PtMath::QuadraticInterpolation(double yMinus, double y0, double yPlus, double& xe, double& ye,
                                    double& root1, double& root2, int& nRoot) {
  nRoot = 0;
  const double a = 0.5 * (yMinus + yPlus) - y0;
  const double b = 0.5 * (yPlus - yMinus);
  const double c = y0;
  xe = -b / (2.0 * a);
  ye = (a * xe + b) * xe + c;

  const double discriminant = b * b - 4.0 * a * c;
  if (!(discriminant >= 0.0)) return;

  const double dx = 0.5 * std::sqrt(discriminant) / std::fabs(a);
  root1 = xe - dx;
  root2 = xe + dx;
  if (std::fabs(root1) <= 1.0) ++nRoot;
  if (std::fabs(root2) <= 1.0) ++nRoot;
  if (root1 < -1.0) root1 = root2;
}

double PtMath::AngleDifference(double a, double b) {
  return std::fmod(std::fmod(a - b, 360.0) + 540.0, 360.0) - 180.0;
}

}  // namespace ephemeris
