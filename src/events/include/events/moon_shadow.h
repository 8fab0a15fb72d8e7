#pragma once

#include "platform/drawing.h"

namespace lumenquest::events {

/// Draws the unlit part of the Moon.
///
/// The lit limb's middle ends up brightLimbZenithAngle (PtMoon::CalculatePhase) from the top,
/// counter-clockwise as one faces the Moon; the disc is turned along, so that its features lie as
/// they do in the sky, as far as the terminator runs from pole to pole.
///
/// In all of them `withZenithAngle` is a MoonPhaseResult's, radians; `moonPhase` its code;
/// `sunElevation` degrees; `phaseIllumination` from 0 to 1.
class MoonShadow {
 public:
  /// The Moon's picture with its shadow, in the picture's size.
  static platform::UIImage drawShadowOnMoonImage(const platform::UIImage& image,
                                                 double withZenithAngle, int moonPhase,
                                                 double sunElevation, double phaseIllumination,
                                                 bool isSupermoon);
  /// The shadow alone.
  static platform::UIImage moonShadowImageOfSize(platform::CGSize size, double withZenithAngle,
                                                 int moonPhase, double sunElevation,
                                                 double phaseIllumination, double shadowRadius,
                                                 bool isSupermoon);
  /// Both. `image` may be null; a size of zero is the picture's own. A radius of 0 or less is a
  /// little more than the disc's, so that no lit rim is left. A supermoon gets a ring.
  static platform::UIImage drawShadowOnMoonImage(const platform::UIImage* image,
                                                 platform::CGSize ofSize, double withZenithAngle,
                                                 int moonPhase, double sunElevation,
                                                 double phaseIllumination, double shadowRadius,
                                                 bool isSupermoon);

  /// How bright the sky behind the Moon is: 0 in the night, 1 by day, in between from −4° to +4° of
  /// the Sun's elevation.
  static double skyBrightness(double sunElevation);
};

}  // namespace lumenquest::events
