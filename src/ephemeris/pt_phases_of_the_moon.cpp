#include "ephemeris/pt_phases_of_the_moon.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>

#include "ephemeris/constants.h"
#include "pt_phases_of_the_moon_terms.h"

namespace ephemeris {

namespace {

std::span<const PhaseTerm> TermsOf(MoonPhaseType type) {
  switch (type) {
    case MoonPhaseType::NewMoon:
      return kNewMoonTerms;
    case MoonPhaseType::FullMoon:
      return kFullMoonTerms;
    default:
      return kQuarterTerms;
  }
}

/// Julian Ephemeris Day of the phase of count `k`.
double PhaseJde(double k, MoonPhaseType type) {
  const double T = k / 1236.85;
  const double T2 = T * T;
  const double T3 = T2 * T;
  const double T4 = T3 * T;

  const double E = 1.0 - 0.002516 * T - 0.0000074 * T2;
  const double powersOfE[] = {1.0, E, E * E};
  const double M =
      (2.5534 + 29.10535669 * k - 0.0000218 * T2 - 0.00000011 * T3) * kDegreesToRadians;
  const double Mp =
      (201.5643 + 385.81693528 * k + 0.0107438 * T2 + 0.00001239 * T3 - 0.000000058 * T4) *
      kDegreesToRadians;
  const double F =
      (160.7108 + 390.67050274 * k - 0.0016341 * T2 - 0.00000227 * T3 + 0.000000011 * T4) *
      kDegreesToRadians;
  const double node =
      (124.7746 - 1.5637558 * k + 0.0020691 * T2 + 0.00000215 * T3) * kDegreesToRadians;

  const double mean =
      2451550.09765 + 29.530588853 * k + 0.0001337 * T2 - 0.00000015 * T3 + 0.00000000073 * T4;

  double periodic = 0.0;
  for (const PhaseTerm& term : TermsOf(type)) {
    const double angle =
        term.moonAnomaly * Mp + term.sunAnomaly * M + term.latitudeArgument * F + term.node * node;
    periodic += term.coefficient * powersOfE[term.powerOfE] * std::sin(angle);
  }

  double planetary = 0.0;
  for (const PhasePlanetaryTerm& term : kPhasePlanetaryTerms) {
    double angle = (term.a + term.b * k) * kDegreesToRadians;
    // The quadratic part of the first argument counts as radians.
    if (&term == kPhasePlanetaryTerms.data()) angle -= 0.009173 * T2;
    planetary += term.coefficient * std::sin(angle);
  }

  const double jde = mean + periodic + 1e-6 * planetary;
  if (type != MoonPhaseType::FirstQuarter && type != MoonPhaseType::LastQuarter) return jde;

  const double W = 0.00306 - 0.00038 * E * std::cos(M) + 0.00026 * std::cos(Mp) -
                   0.00002 * std::cos(Mp - M) + 0.00002 * std::cos(Mp + M) +
                   0.00002 * std::cos(2.0 * F);
  return type == MoonPhaseType::FirstQuarter ? jde + W : jde - W;
}

}  // namespace

void PtPhasesOfTheMoon::CalculatePhase(const PtDateTime& date, MoonPhaseType type, double* before,
                                       double* next, double* following) {
  const double jd = date.JulianDay();
  *before = 0.0;
  *next = 0.0;
  *following = 0.0;

  double k = std::floor(((date.month - 1) / 12.0 + date.year - 2000) * 12.3685) +
             0.25 * static_cast<int>(type);
  double kFollowing = 0.0;
  // Forward while the phase lies before the date, backward once one at or after it is found.
  while (*before == 0.0 || *next == 0.0) {
    const double jde = PhaseJde(k, type);
    if (jde < jd) {
      *before = jde;
      k += 1.0;
    } else {
      *next = jde;
      kFollowing = k + 1.0;
      k -= 1.0;
    }
  }
  *following = PhaseJde(kFollowing, type);
}

void PtPhasesOfTheMoon::CalculatePhasesForMonth(const PtDateTime& date, PtMoonPhases* out) {
  for (const MoonPhaseType type : {MoonPhaseType::NewMoon, MoonPhaseType::FirstQuarter,
                                   MoonPhaseType::FullMoon, MoonPhaseType::LastQuarter}) {
    double before = 0.0;
    double next = 0.0;
    double following = 0.0;
    CalculatePhase(date, type, &before, &next, &following);
    for (const double jde : {before, next, following}) {
      PtDateTime converted;
      converted.FromJulianDay(jde);
      if (date <= converted) {
        out->push_back(std::make_unique<PtMoonPhaseWithDate>(PtMoonPhaseWithDate{type, converted}));
      }
    }
  }
  std::sort(out->begin(), out->end(),
            [](const auto& a, const auto& b) { return a->date < b->date; });
}

double getNewMoonMjd(const PtMoonPhases& list, double mjd) {
  double newMoon = std::numeric_limits<double>::max();
  for (const auto& phase : list) {
    if (phase->type != MoonPhaseType::NewMoon) continue;
    const double phaseMjd = phase->date.ModifiedJulianDay();
    if (phaseMjd < mjd) newMoon = phaseMjd;
  }
  return newMoon;
}

}  // namespace ephemeris
