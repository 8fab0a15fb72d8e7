#pragma once

#include <memory>
#include <vector>

#include "ephemeris/pt_date_time.h"
#include "ephemeris/pt_moon.h"

namespace ephemeris {

/// The instant of a principal phase. The date is dynamical time, as the method gives it.
struct PtMoonPhaseWithDate {
  MoonPhaseType type;
  PtDateTime date;
};

using PtMoonPhases = std::vector<std::unique_ptr<PtMoonPhaseWithDate>>;

/// Instants of the principal phases, by Meeus, Astronomical Algorithms, chapter 49, with the mean
/// phase of the book's first edition. Good to some seconds within centuries of 2000.
class PtPhasesOfTheMoon {
 public:
  /// Julian Ephemeris Days of the last phase of this type before `date`, of the first one at or
  /// after it, and of the one after that.
  void CalculatePhase(const PtDateTime& date, MoonPhaseType type, double* before, double* next,
                      double* following);

  /// Appends the principal phases at or after `date`, two of each type, and sorts by date. A phase
  /// that `date` itself names comes as well.
  void CalculatePhasesForMonth(const PtDateTime& date, PtMoonPhases* out);
};

/// MJD of the last new Moon of the list before `mjd`; the largest double when there is none.
double getNewMoonMjd(const PtMoonPhases& list, double mjd);

}  // namespace ephemeris
