#include "ephemeris/pt_brown_lunar_perturbation.h"

#include <cmath>
#include <cstddef>
#include <utility>

#include "ephemeris/constants.h"
#include "ephemeris/pt_math.h"
#include "pt_brown_lunar_perturbation_terms.h"

namespace ephemeris {

namespace {

/// sin 2π(a + b·T)
double Sine(double a, double b, double T) { return std::sin(kTwoPi * PtMath::Frac(a + b * T)); }

double MeanArgument(double a, double b, double c, double T, double correction) {
  return kTwoPi * PtMath::Frac(a + b * T + c * (T * T)) + correction / kArcsecondsPerRadian;
}

}  // namespace

template <int Largest>
void PtBrownLunarPerturbation::Multiples<Largest>::Fill(double argument, double factor) {
  Multiples& multiples = *this;
  const Angle one{factor * std::cos(argument), factor * std::sin(argument)};
  multiples[0] = {1.0, 0.0};
  multiples[1] = one;
  for (int k = 2; k <= Largest; ++k) {
    PtMath::AdditionTheorem(multiples[k - 1].cosine, multiples[k - 1].sine, one.cosine, one.sine,
                            &multiples[k].cosine, &multiples[k].sine);
  }
  for (int k = 1; k <= Largest; ++k) multiples[-k] = {multiples[k].cosine, -multiples[k].sine};
}

void PtBrownLunarPerturbation::Init(double T) {
  T_ = T;

  const double S1 = Sine(0.19833, 0.05611, T);
  const double S2 = Sine(0.27869, 0.04508, T);
  const double S3 = Sine(0.16827, -0.36903, T);
  const double S4 = Sine(0.34734, -5.37261, T);
  const double S5 = Sine(0.10498, -5.37899, T);
  const double S6 = Sine(0.42681, -0.41855, T);
  const double S7 = Sine(0.14943, -5.37511, T);
  const double DL0 = 0.84 * S1 + 0.31 * S2 + 14.27 * S3 + 7.26 * S4 + 0.28 * S5 + 0.24 * S6;
  const double DL = 2.94 * S1 + 0.31 * S2 + 14.27 * S3 + 9.34 * S4 + 1.12 * S5 + 0.83 * S6;
  const double DLS = -6.4 * S1 - 1.89 * S6;
  const double DF =
      0.21 * S1 + 0.31 * S2 + 14.27 * S3 - 88.7 * S4 - 15.3 * S5 + 0.24 * S6 - 1.86 * S7;
  const double DD = DL0 - DLS;

  dgam_ = -3.332e-6 * Sine(0.59734, -5.37261, T) - 5.39e-7 * Sine(0.35498, -5.37899, T) -
          6.4e-8 * Sine(0.39943, -5.37511, T);

  L0_ = MeanArgument(0.60643382, 1336.85522467, -3.13e-6, T, DL0);
  l_ = MeanArgument(0.37489701, 1325.55240982, 2.565e-5, T, DL);
  ls_ = MeanArgument(0.99312619, 99.99735956, -4.4e-7, T, DLS);
  F_ = MeanArgument(0.25909118, 1342.2278298, -8.92e-6, T, DF);
  D_ = MeanArgument(0.82736186, 1236.85308708, -3.97e-6, T, DD);

  dlam_ = 0.0;
  ds_ = 0.0;
  gam1c_ = 0.0;
  sinPi_ = 3422.7;
  N_ = 0.0;

  multiplesOfL_.Fill(l_, 1.000002208);
  multiplesOfLs_.Fill(ls_, 0.997504612 - 0.002495388 * T);
  multiplesOfF_.Fill(F_, 1.000002708 + 139.978 * dgam_);
  multiplesOfD_.Fill(D_, 1.0);
}

void PtBrownLunarPerturbation::CalculateTerm(int p, int q, int r, int s, double* x,
                                             double* y) const {
  Product product;
  product.MultiplyBy(multiplesOfL_, p);
  product.MultiplyBy(multiplesOfLs_, q);
  product.MultiplyBy(multiplesOfF_, r);
  product.MultiplyBy(multiplesOfD_, s);
  *x = product.cosine;
  *y = product.sine;
}

/// The sums of the series while they grow, apart from the object so that they stay in registers.
struct PtBrownLunarPerturbation::Sums {
  void Add(const LunarTerm& term, double x, double y) {
    dlam += term.cl * y;
    ds += term.cs * y;
    gam1c += term.cg * x;
    sinPi += term.cp * x;
  }
  void Add(const LunarLatitudeTerm& term, double, double y) { N += term.cn * y; }

  double dlam;
  double ds;
  double gam1c;
  double sinPi;
  double N;
};

/// Walks a table's rows at compile time: the multipliers are constants, so that a row costs its
/// additions of angles and nothing else. Rows are computed as CalculateTerm() would.
template <const auto& Terms>
class PtBrownLunarPerturbation::Walk {
 public:
  Walk(const PtBrownLunarPerturbation& series, Sums& sums) : series_(series), sums_(sums) {}

  [[gnu::always_inline]] void AddRows() { AddRows(std::make_index_sequence<Terms.size()>()); }

 private:
  template <std::size_t... Row>
  [[gnu::always_inline]] void AddRows(std::index_sequence<Row...>) {
    (Add<Row>(), ...);
  }

  template <std::size_t Row>
  [[gnu::always_inline]] void Add() {
    constexpr auto& term = Terms[Row];
    // Neighbouring rows often differ in the last multiplier only.
    if constexpr (!HasPrefixOfRowBefore(Row)) {
      prefix_ = Product();
      prefix_.MultiplyBy(series_.multiplesOfL_, term.p);
      prefix_.MultiplyBy(series_.multiplesOfLs_, term.q);
      prefix_.MultiplyBy(series_.multiplesOfF_, term.r);
    }
    Product product = prefix_;
    product.MultiplyBy(series_.multiplesOfD_, term.s);
    sums_.Add(term, product.cosine, product.sine);
  }

  static constexpr bool HasPrefixOfRowBefore(std::size_t row) {
    if (row == 0) return false;
    const auto& term = Terms[row];
    const auto& before = Terms[row - 1];
    return term.p == before.p && term.q == before.q && term.r == before.r;
  }

  const PtBrownLunarPerturbation& series_;
  Sums& sums_;
  Product prefix_;
};

void PtBrownLunarPerturbation::Calculate() {
  Sums sums{dlam_, ds_, gam1c_, sinPi_, N_};
  Walk<kLunarTerms>(*this, sums).AddRows();
  Walk<kLunarLatitudeTerms>(*this, sums).AddRows();
  dlam_ = sums.dlam;
  ds_ = sums.ds;
  gam1c_ = sums.gam1c;
  sinPi_ = sums.sinPi;
  N_ = sums.N;
  AddPlanetaryPerturbation(T_);
}

void PtBrownLunarPerturbation::AddPlanetaryPerturbation(double T) {
  double sum = 0.0;
  for (const PlanetaryTerm& term : kPlanetaryTerms) sum += term.amplitude * Sine(term.a, term.b, T);
  dlam_ += sum;
}

double PtBrownLunarPerturbation::lambda() const {
  return std::fmod(L0_ + dlam_ / kArcsecondsPerRadian, kTwoPi);
}

double PtBrownLunarPerturbation::beta() const {
  const double S = F_ + ds_ / kArcsecondsPerRadian;
  const double factor = 1.000002708 + 139.978 * dgam_;
  // 18519.7 is 18518.511 + 1.189.
  return (factor * (18519.7 + gam1c_) * std::sin(S) - 6.24 * std::sin(3.0 * S) + N_) /
         kArcsecondsPerRadian;
}

double PtBrownLunarPerturbation::dist() const {
  // The Earth's equatorial radius of 6378.137 km times the arcseconds in a radian.
  return 1315585192.5224364 / (0.999953253 * sinPi_);
}

}  // namespace ephemeris
