#pragma once

namespace lumenquest::platform {

/// A colour by its sRGB components, gamma-encoded, and its opacity; each from 0 to 1.
struct UIColor {
  /// Hue as a fraction of the circle (red 0, green 1/3, blue 2/3), saturation, brightness and
  /// opacity; each from 0 to 1. Greys have hue 0, black has saturation 0 too.
  struct HSBA {
    double hue = 0.0;
    double saturation = 0.0;
    double brightness = 0.0;
    double alpha = 0.0;

    bool operator==(const HSBA&) const = default;
  };

  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
  double alpha = 1.0;

  bool operator==(const UIColor&) const = default;

  /// The hue counts modulo 1, the others are brought into 0 to 1; what is not finite counts as 0.
  /// Source: Smith, Color Gamut Transform Pairs, SIGGRAPH 1978 (the hexcone model).
  static UIColor fromHSBA(const HSBA& hsba);

  /// All four are 0 for a colour that cannot be converted: one with a component outside 0 to 1, or
  /// NaN.
  HSBA toHSBA() const;

  /// Of the Moon's unlit part, which is the sky before it: 0 in the night, black, to 1 by day,
  /// blue.
  static UIColor interpolatedMoonShadowColor(double fraction);

  /// The colour with another opacity.
  constexpr UIColor withAlpha(double opacity) const { return {red, green, blue, opacity}; }
};

/// The sky by day, and the views' light accent.
inline constexpr UIColor kDaySkyColor{74.0 / 255.0, 193.0 / 255.0, 224.0 / 255.0, 1.0};

}  // namespace lumenquest::platform
