#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "ephemeris/pt_date_time.h"

namespace ephemeris {

struct ApsisTerm;

/// One extreme of the Moon's distance.
struct PtApogeePerigee {
  static constexpr std::int32_t kApogee = 1;
  static constexpr std::int32_t kPerigee = 2;

  std::int32_t kind = 0;
  /// Dynamical time, as the method gives it.
  PtDateTime date;
  /// Kilometres between the centres of Earth and Moon.
  double distance = 0.0;
};

/// Instants and distances of the Moon's apogees and perigees, by Meeus, Astronomical Algorithms,
/// chapter 50.
class PtMoonApogeePerigee {
 public:
  /// The event of count `k`: an integer is a perigee, an integer plus one half an apogee. For any
  /// other k (tolerance 0.001) returns false and leaves `result` untouched.
  bool CalculateForK(double k, PtApogeePerigee* result);

  /// Appends the events of a year in time order, from about a month before it to the end of the
  /// January after it, so that consumers can look across the year's ends.
  void CalculateValuesForYear(int year, std::vector<std::unique_ptr<PtApogeePerigee>>* out);

  /// Add the periodic terms to the corrections of time (days) and parallax (arcseconds).
  void SumTermsApogee();
  void SumTermsPerigee();

 private:
  void SumTerms(std::span<const ApsisTerm> timeTerms, std::span<const ApsisTerm> parallaxTerms);

  double jde_ = 0.0;
  double T_ = 0.0;
  double D_ = 0.0;
  double M_ = 0.0;
  double F_ = 0.0;
  double timeCorrection_ = 0.0;
  double parallax_ = 0.0;
};

}  // namespace ephemeris
