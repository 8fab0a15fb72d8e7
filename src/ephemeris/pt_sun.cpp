#include "ephemeris/pt_sun.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "ephemeris/constants.h"
#include "ephemeris/pt_math.h"
#include "pt_sun_terms.h"

namespace ephemeris {

namespace {

double MeanArgument(double a, double b, double T) { return kTwoPi * PtMath::Frac(a + b * T); }

/// Sums of the perturbations: longitude and latitude in arcseconds, radius in 1e-6 AU.
struct Perturbation {
  double dl = 0.0;
  double dr = 0.0;
  double db = 0.0;
};

/// Cosine and sine of an angle.
struct Angle {
  double c;
  double s;
};

/// Multiples −1 … 7 of the Earth's mean anomaly; each planet's terms use the first ones.
class EarthMultiples {
 public:
  explicit EarthMultiples(double anomaly) {
    const Angle one{std::cos(anomaly), std::sin(anomaly)};
    angles_[0] = {one.c, -one.s};
    angles_[1] = {1.0, 0.0};
    angles_[2] = one;
    for (std::size_t i = 3; i < angles_.size(); ++i) {
      PtMath::AdditionTheorem(angles_[i - 1].c, angles_[i - 1].s, one.c, one.s, &angles_[i].c,
                              &angles_[i].s);
    }
  }

  const Angle& operator[](int multiple) const {
    return angles_[static_cast<std::size_t>(multiple + 1)];
  }

 private:
  std::array<Angle, 9> angles_;
};

/// Multiples +1 … Smallest (negative) of a planet's mean anomaly.
template <int Smallest>
class PlanetMultiples {
 public:
  explicit PlanetMultiples(double anomaly) {
    const Angle one{std::cos(anomaly), std::sin(anomaly)};
    angles_[0] = one;
    angles_[1] = {1.0, 0.0};
    angles_[2] = {one.c, -one.s};
    for (std::size_t i = 3; i < angles_.size(); ++i) {
      PtMath::AdditionTheorem(angles_[i - 1].c, angles_[i - 1].s, one.c, -one.s, &angles_[i].c,
                              &angles_[i].s);
    }
  }

  const Angle& operator[](int multiple) const {
    return angles_[static_cast<std::size_t>(1 - multiple)];
  }

 private:
  std::array<Angle, 2 - Smallest> angles_;
};

/// Sums the terms of one planet, whose multiples reach down to Smallest. The rows are walked at
/// compile time, so that a row costs its products and nothing else.
template <const auto& Terms, int Smallest>
class PlanetPerturbation {
 public:
  PlanetPerturbation(double T, const EarthMultiples& earth, double planetAnomaly)
      : T_(T), earth_(earth), planet_(planetAnomaly) {}

  Perturbation Sum() {
    AddRows(std::make_index_sequence<Terms.size()>());
    return sum_;
  }

 private:
  template <std::size_t... Row>
  void AddRows(std::index_sequence<Row...>) {
    (Add<Row>(), ...);
  }

  template <std::size_t Row>
  void Add() {
    constexpr SolarPerturbationTerm term = Terms[Row];
    if constexpr (term.iT == 0) {
      const Angle& earth = earth_[term.I];
      const Angle& planet = planet_[term.i];
      PtMath::AdditionTheorem(earth.c, earth.s, planet.c, planet.s, &u_, &v_);
    } else {
      u_ *= T_;
      v_ *= T_;
    }
    sum_.dl += term.dlc * u_ + term.dls * v_;
    sum_.dr += term.drc * u_ + term.drs * v_;
    // Most rows have no part in the latitude.
    if constexpr (term.dbc != 0.0 || term.dbs != 0.0) {
      sum_.db += term.dbc * u_ + term.dbs * v_;
    }
  }

  double T_;
  const EarthMultiples& earth_;
  PlanetMultiples<Smallest> planet_;
  Perturbation sum_;
  double u_ = 0.0;
  double v_ = 0.0;
};

}  // namespace

Vector3D PtSun::GetEclipticPosition(double T, bool highPrecision) {
  if (!highPrecision) return GetEclipticPositionLowPrecision(T);

  const double M2 = MeanArgument(0.1387306, 162.5485917, T);
  const double M3 = MeanArgument(0.9931266, 99.9973604, T);
  const double M4 = MeanArgument(0.054325, 53.1666028, T);
  const double M5 = MeanArgument(0.055175, 8.4293972, T);
  const double M6 = MeanArgument(0.88165, 3.3938722, T);
  const double D = MeanArgument(0.8274, 1236.8531, T);
  const double A = MeanArgument(0.3749, 1325.5524, T);
  const double U = MeanArgument(0.2591, 1342.2278, T);

  const EarthMultiples earth(M3);
  const Perturbation venus = PlanetPerturbation<kVenusTerms, -6>(T, earth, M2).Sum();
  const Perturbation mars = PlanetPerturbation<kMarsTerms, -8>(T, earth, M4).Sum();
  const Perturbation jupiter = PlanetPerturbation<kJupiterTerms, -4>(T, earth, M5).Sum();
  const Perturbation saturn = PlanetPerturbation<kSaturnTerms, -2>(T, earth, M6).Sum();
  double dl = venus.dl + mars.dl + jupiter.dl + saturn.dl;
  double dr = venus.dr + mars.dr + jupiter.dr + saturn.dr;
  double db = venus.db + mars.db + jupiter.db + saturn.db;

  // The Earth's motion around the barycentre it shares with the Moon.
  dl += 6.45 * std::sin(D) - 0.42 * std::sin(D - A) + 0.18 * std::sin(D + A) +
        0.17 * std::sin(D - M3) - 0.06 * std::sin(D + M3);
  dr += 30.76 * std::cos(D) - 3.06 * std::cos(D - A) + 0.85 * std::cos(D + A) -
        0.58 * std::cos(D + M3) + 0.57 * std::cos(D - M3);
  db += 0.576 * std::sin(U);

  // Long-period terms.
  dl += 6.40 * std::sin(kTwoPi * (0.6983 + 0.0561 * T)) +
        1.87 * std::sin(kTwoPi * (0.5764 + 0.4174 * T)) +
        0.27 * std::sin(kTwoPi * (0.4189 + 0.3306 * T)) +
        0.20 * std::sin(kTwoPi * (0.3581 + 2.4814 * T));

  const double l = kTwoPi * PtMath::Frac(0.7859453 + M3 / kTwoPi +
                                         ((6191.2 + 1.1 * T) * T + dl) / kArcsecondsPerRevolution);
  const double b = db / kArcsecondsPerRadian;
  const double r = 1.0001398 - 0.0000007 * T + dr * 1e-6;
  return Vector3D(PtPolar(l, b, r));
}

Vector3D PtSun::GetEclipticPositionLowPrecision(double T) {
  const double M = MeanArgument(0.993133, 99.997361, T);
  const double l =
      kTwoPi * PtMath::Frac(0.7859453 + M / kTwoPi +
                            (6893.0 * std::sin(M) + 72.0 * std::sin(2.0 * M) + 6191.2 * T) /
                                kArcsecondsPerRevolution);
  const double r = 1.0001398 - 0.0000007 * T;
  return Vector3D(PtPolar(l, 0.0, r));
}

double PtSun::CalculateSinPi(double distanceAu) {
  // Horizontal parallax of 8.794″ at 1 AU.
  return 4.263451510385646e-5 / distanceAu;
}

double PtSun::CalculateSemidiameterAtUnitDistance(double, double distanceAu) {
  // 959.63″ at 1 AU.
  return 0.2665638888888889 / distanceAu;
}

}  // namespace ephemeris
