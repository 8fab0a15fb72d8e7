#include "events/moon_phase_result.h"

#include "ephemeris/pt_moon.h"
#include "events/ephemeris_utils.h"
#include "platform/localized_strings.h"

namespace lumenquest::events {

using ephemeris::MoonPhaseType;
using platform::kTableEphemeris;
using platform::localizedString;
using platform::stringWithFormat;

bool MoonPhaseResult::isWaning() const {
  const auto type = static_cast<MoonPhaseType>(phase);
  return type == MoonPhaseType::LastQuarter || type == MoonPhaseType::WaningGibbous ||
         type == MoonPhaseType::WaningCrescent;
}

int MoonPhaseResult::shadowPhase() const {
  if (isWaning() == isLimbWaning) return phase;
  // Of the other side's phases any will do: the shadow's shape is the illumination's.
  return static_cast<int>(isLimbWaning ? MoonPhaseType::WaningCrescent
                                       : MoonPhaseType::WaxingCrescent);
}

std::string MoonPhaseResult::phaseString() const {
  return phaseStringWithPercentageInNewLine(false);
}

std::string MoonPhaseResult::phaseStringWithPercentageInNewLine(bool percentageInNewLine) const {
  return phaseStringWithPhaseName(std::nullopt, percentageInNewLine);
}

std::string MoonPhaseResult::phaseStringWithPhaseName(
    const std::optional<std::string>& name) const {
  return phaseStringWithPhaseName(name, false);
}

std::string MoonPhaseResult::phaseStringWithPhaseName(const std::optional<std::string>& name,
                                                      bool percentageInNewLine) const {
  // Multiplied in single precision: the decimal shown depends on it.
  const auto percent = static_cast<double>(phaseIllumination * 100.0f);
  const bool principal = phase <= static_cast<int>(MoonPhaseType::LastQuarter);
  const std::string percentage =
      principal ? stringWithFormat(localizedString("moon_phase_percentage", kTableEphemeris),
                                   {percent, EphemerisUtils::mjdToString(mjdPhase)})
                : stringWithFormat("(%.1f%%)", {percent});
  return stringWithFormat("%@ %@%@", {name ? name : EphemerisUtils::moonPhaseToString(phase),
                                      percentageInNewLine ? "\n" : "", percentage});
}

}  // namespace lumenquest::events
