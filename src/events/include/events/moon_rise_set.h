#pragma once

#include "ephemeris/constants.h"

namespace lumenquest::events {

/// A span in which the Moon is up, MJD. Without a rise it is up from the start, without a set to
/// the end.
struct MoonRiseSet {
  double mjdRise = ephemeris::kMjdNoRiseOrSet;
  double mjdSet = ephemeris::kMjdNoRiseOrSet;
};

}  // namespace lumenquest::events
