#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
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

  /// What an altitude needs of a position, whoever looks: radians.
  struct Sample {
    double sinDeclination = 0.0;
    double cosDeclination = 0.0;
    double rightAscension = 0.0;
    /// Greenwich apparent sidereal time.
    double siderealAngle = 0.0;
  };

  struct Entry {
    Key key;
    Vector3D ecliptic;
    Vector3D meanEquatorial;
    Vector3D trueEquatorial;
    double obliquity = 0.0;
    double nutationInLongitude = 0.0;
    double nutationInObliquity = 0.0;
    /// Filled when an altitude is first asked for.
    std::optional<Sample> sample;
  };

  /// Enough for every instant that one day's values of a place need (some 175).
  static constexpr std::size_t kCapacity = 192;

  PositionMemory();

  /// The entry of these arguments, or null. It stays valid until the next Add().
  Entry* Find(const Key& key);

  /// Takes the entry in, forgetting the oldest one when full.
  void Add(const Entry& entry);

 private:
  /// Entries of one bucket are chained by their slots.
  using Slot = std::uint8_t;
  static constexpr Slot kNone = 255;
  static constexpr std::size_t kBuckets = 256;
  static_assert(kCapacity < kNone);

  static std::size_t BucketOf(double mjd);
  void Unlink(std::size_t slot);

  std::vector<Entry> entries_;
  std::array<Slot, kBuckets> heads_;
  std::array<Slot, kCapacity> following_;
  /// The slot that the next entry takes once all are in use.
  std::size_t oldest_ = 0;
};

}  // namespace ephemeris
