#include "ephemeris/pt_moon_apogee_perigee.h"

#include <cmath>
#include <span>

#include "ephemeris/constants.h"
#include "pt_moon_apogee_perigee_terms.h"

namespace ephemeris {

namespace {

constexpr int kJanuary = 1;

}  // namespace

bool PtMoonApogeePerigee::CalculateForK(double k, PtApogeePerigee* result) {
  const double f = k - std::floor(k);
  timeCorrection_ = 0.0;
  parallax_ = 0.0;
  const bool apogee = 0.499 < f && f < 0.501;
  const bool perigee = f < 0.001 || f > 0.999;
  if (!apogee && !perigee) return false;

  T_ = k / 1325.55;
  const double T2 = T_ * T_;
  const double T3 = T2 * T_;
  const double T4 = T3 * T_;
  jde_ = 2451534.6698 + 27.55454989 * k - 0.0006691 * T2 - 0.000001098 * T3 + 0.0000000052 * T4;
  D_ = std::fmod((171.9179 + 335.9106046 * k - 0.010025 * T2 - 0.00001156 * T3 + 0.000000055 * T4) *
                     kDegreesToRadians,
                 kTwoPi);
  M_ = std::fmod((347.3477 + 27.1577721 * k - 0.0008323 * T2 - 0.000001 * T3) * kDegreesToRadians,
                 kTwoPi);
  F_ = std::fmod((316.6109 + 364.5287911 * k - 0.0125131 * T2 - 0.0000148 * T3) * kDegreesToRadians,
                 kTwoPi);

  if (apogee) {
    SumTermsApogee();
  } else {
    SumTermsPerigee();
  }

  result->date.FromJulianDay(jde_ + timeCorrection_);
  result->kind = apogee ? PtApogeePerigee::kApogee : PtApogeePerigee::kPerigee;
  result->distance = kEarthRadiusKm / std::sin(parallax_ / kArcsecondsPerRadian);
  return true;
}

void PtMoonApogeePerigee::SumTermsApogee() { SumTerms(kApogeeTimeTerms, kApogeeParallaxTerms); }

void PtMoonApogeePerigee::SumTermsPerigee() { SumTerms(kPerigeeTimeTerms, kPerigeeParallaxTerms); }

void PtMoonApogeePerigee::SumTerms(std::span<const ApsisTerm> timeTerms,
                                   std::span<const ApsisTerm> parallaxTerms) {
  const auto angle = [this](const ApsisTerm& term) {
    return term.d * D_ + term.m * M_ + term.f * F_;
  };
  for (const ApsisTerm& term : timeTerms) {
    timeCorrection_ += (term.c + term.cT * T_) * std::sin(angle(term));
  }
  for (const ApsisTerm& term : parallaxTerms) {
    parallax_ += (term.c + term.cT * T_) * std::cos(angle(term));
  }
}

void PtMoonApogeePerigee::CalculateValuesForYear(
    int year, std::vector<std::unique_ptr<PtApogeePerigee>>* out) {
  double k = std::floor((year - 1.0 / 12.0 - 1999.97) * 13.2555);
  for (;; k += 0.5) {
    auto event = std::make_unique<PtApogeePerigee>();
    CalculateForK(k, event.get());
    if (event->date.year > year && event->date.month != kJanuary) return;
    out->push_back(std::move(event));
  }
}

}  // namespace ephemeris
