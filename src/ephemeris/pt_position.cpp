#include "ephemeris/pt_position.h"

#include <cmath>

#include "ephemeris/constants.h"

namespace ephemeris {

namespace {

constexpr double kEarthRadiusMetres = 6378137.0;
/// Ratio of the polar to the equatorial radius, 1 − flattening.
constexpr double kAxisRatio = 0.99664719;

}  // namespace

PtPosition::PtPosition() { CalcObserverCoords(); }

void PtPosition::CalcObserverCoords() {
  const double lat = latitude * kDegreesToRadians;
  const double u = std::atan(kAxisRatio * std::tan(lat));
  const double h = height / kEarthRadiusMetres;
  rhoSinPhi = kAxisRatio * std::sin(u) + h * std::sin(lat);
  rhoCosPhi = std::cos(u) + h * std::cos(lat);
  rho = std::sqrt(rhoSinPhi * rhoSinPhi + rhoCosPhi * rhoCosPhi);
}

}  // namespace ephemeris
