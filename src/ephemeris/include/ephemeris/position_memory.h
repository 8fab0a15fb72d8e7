#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "ephemeris/vector3d.h"

namespace ephemeris {

/// Remembers the last positions that a body computed, by the exact arguments of the call.
///
/// The searches of one day sample the same hours again and again; an entry holds everything that
/// computing the position left behind, so that a recalled position gives the bits of a fresh one.
class PositionMemory {
 public:
  struct Key {
    double mjd = 0.0;
    double deltaT = 0.0;
    bool highPrecision = false;

    bool operator==(const Key&) const = default;
  };

  struct Entry {
    Key key;
    Vector3D ecliptic;
    Vector3D meanEquatorial;
    Vector3D trueEquatorial;
    double obliquity = 0.0;
    double nutationInLongitude = 0.0;
    double nutationInObliquity = 0.0;
    /// What the altitude samples need of the true equatorial position; filled on first use.
    bool sampled = false;
    double sinDeclination = 0.0;
    double cosDeclination = 0.0;
    /// Greenwich apparent sidereal time, radians.
    double siderealAngle = 0.0;
    double rightAscension = 0.0;
  };

  /// Enough for every instant that one day's values of a place need (some 175).
  static constexpr std::size_t kCapacity = 192;

  /// The entry of these arguments, or null. It stays valid until the next Add().
  Entry* Find(const Key& key);

  /// Takes the entry in, forgetting the oldest one when full.
  Entry* Add(const Entry& entry);

 private:
  std::vector<Entry> entries_;
  std::array<double, kCapacity> mjds_{};
  /// Where the next entry goes once full.
  std::size_t oldest_ = 0;
  /// Where the next look-up starts: searches ask for their hours in the same order again.
  std::size_t next_ = 0;
};

}  // namespace ephemeris
