#pragma once

#include "platform/ui_color.h"

/// The colours of light. Those that the events layer refers to by a name of the asset catalogue
/// bear that name.
namespace lumenquest::widgets::palette {

/// An opaque sRGB colour of components from 0 to 255.
constexpr platform::UIColor fromBytes(int red, int green, int blue) {
  return {red / 255.0, green / 255.0, blue / 255.0, 1.0};
}

/// Daytime.
inline constexpr platform::UIColor kLumenquestYellow = fromBytes(254, 217, 37);
/// Night: daytime's colour, faint.
inline constexpr platform::UIColor kNight = kLumenquestYellow.withAlpha(0.2);
inline constexpr platform::UIColor kGoldenHourLayerColor = fromBytes(255, 77, 0);
/// Blue hour.
inline constexpr platform::UIColor kCivilTwiligthLayerColor = fromBytes(38, 137, 248);
inline constexpr platform::UIColor kNauticalTwilightLayerColor = fromBytes(33, 79, 216);
inline constexpr platform::UIColor kAstronomicalTwilightLayerColor = fromBytes(30, 52, 152);
/// Light accent of the views.
inline constexpr platform::UIColor kLightAccent = platform::kDaySkyColor;

}  // namespace lumenquest::widgets::palette
