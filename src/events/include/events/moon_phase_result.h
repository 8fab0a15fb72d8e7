#pragma once

#include <optional>
#include <string>

namespace lumenquest::events {

/// The Moon's look at one moment.
class MoonPhaseResult {
 public:
  /// Illuminated fraction, 0…1.
  float phaseIllumination = 0.0f;
  /// By how much the lit side is turned, radians.
  float zenithAngle = 0.0f;
  /// Degrees.
  float moonElevation = 0.0f;
  float sunElevation = 0.0f;
  /// 0 to 3 principal phases, 4 to 7 the spans between them.
  int phase = 0;
  /// MJD of the day's principal phase; 0 when it was not asked for, kMjdNoRiseOrSet when the day
  /// has none.
  double mjdPhase = 0.0;
  /// Whether the Moon wanes at the moment itself: after full Moon it does, though the phase is full
  /// for the whole day, and before new Moon. The zenith angle is of this Moon.
  bool isLimbWaning = false;

  /// The phase after which the shadow is drawn: the day's, or the moment's where only that lies on
  /// the limb's side.
  int shadowPhase() const;
  /// Last quarter, waning gibbous or waning crescent.
  bool isWaning() const;

  /// The phase's name with the illuminated percentage, and on the day of a principal phase with its
  /// time. A given name stands in place of the phase's own.
  std::string phaseString() const;
  std::string phaseStringWithPercentageInNewLine(bool percentageInNewLine) const;
  std::string phaseStringWithPhaseName(const std::optional<std::string>& name) const;
  std::string phaseStringWithPhaseName(const std::optional<std::string>& name,
                                       bool percentageInNewLine) const;
};

}  // namespace lumenquest::events
