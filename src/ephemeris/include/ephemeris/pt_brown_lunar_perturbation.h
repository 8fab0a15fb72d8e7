#pragma once

#include <array>
#include <cstddef>

#include "ephemeris/pt_math.h"

namespace ephemeris {

/// The Moon's geocentric ecliptic position (mean equinox of date) at one instant, from Brown's
/// lunar theory as truncated by Montenbruck and Pfleger, Astronomy on the Personal Computer: 104
/// solar terms, ten terms of the latitude, eleven planetary terms in longitude.
///
/// Call Init(), Calculate(), then read lambda(), beta() and dist().
class PtBrownLunarPerturbation {
 public:
  /// Mean arguments and the multiples' tables at `T` Julian centuries of dynamical time from
  /// J2000.0.
  void Init(double T);

  /// cos and sin of p·l + q·ls + r·F + s·D, each factor scaled by its eccentricity factor.
  void CalculateTerm(int p, int q, int r, int s, double* x, double* y) const;

  /// Sums the series.
  void Calculate();

  /// Adds the planets' part of the longitude.
  void AddPlanetaryPerturbation(double T);

  /// Ecliptic longitude and latitude, radians.
  double lambda() const;
  double beta() const;
  /// Distance from the Earth's centre, km.
  double dist() const;

 private:
  struct Angle {
    double cosine;
    double sine;
  };

  /// Cosines and sines of the multiples −Largest … +Largest of one argument.
  template <int Largest>
  struct Multiples {
    void Fill(double argument, double factor);
    const Angle& operator[](int multiple) const {
      return angles[static_cast<std::size_t>(multiple + Largest)];
    }
    Angle& operator[](int multiple) { return angles[static_cast<std::size_t>(multiple + Largest)]; }

    std::array<Angle, 2 * Largest + 1> angles;
  };

  /// Cosine and sine of a sum of multiples, starting from the angle zero.
  struct Product {
    double cosine = 1.0;
    double sine = 0.0;

    template <int Largest>
    void MultiplyBy(const Multiples<Largest>& multiples, int multiple) {
      if (multiple == 0) return;
      const Angle& angle = multiples[multiple];
      PtMath::AdditionTheorem(cosine, sine, angle.cosine, angle.sine, &cosine, &sine);
    }
  };

  struct Sums;
  template <const auto& Terms>
  class Walk;

  double T_;
  double dgam_;
  double dlam_;
  double ds_;
  double gam1c_;
  double sinPi_;
  double N_;
  double L0_;
  double l_;
  double ls_;
  double F_;
  double D_;
  Multiples<4> multiplesOfL_;
  Multiples<3> multiplesOfLs_;
  Multiples<4> multiplesOfF_;
  Multiples<6> multiplesOfD_;
};

}  // namespace ephemeris
