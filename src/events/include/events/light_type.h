#pragma once

namespace lumenquest::events {

/// The light phases of a day. Numbered apart from the engine's SearchEvent.
enum class LightType : unsigned {
  LightTypeCivilTwilight = 0,         ///< −6° to the horizon
  LightTypeNauticalTwilight = 1,      ///< −12° to −6°
  LightTypeAstronomicalTwilight = 2,  ///< −18° to −12°
  LightTypeBlueHour = 3,              ///< −6° to −4°
  LightTypeGoldenHour = 4,            ///< −4° to +6°
};

}  // namespace lumenquest::events
