#include "events/moon_shadow.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "ephemeris/constants.h"

namespace lumenquest::events {

using platform::CGAffineTransform;
using platform::CGPoint;
using platform::CGRect;
using platform::CGSize;
using platform::UIBezierPath;
using platform::UIImage;

namespace {

constexpr double kRingWidth = 1.5;
/// Warm as the Moon near the horizon.
constexpr platform::UIColor kRingColor{254.0 / 255.0, 217.0 / 255.0, 37.0 / 255.0, 1.0};
/// A light page would swallow the yellow: this grey stands out from light grounds and dark ones.
constexpr platform::UIColor kRingOutlineColor{0.455, 0.47, 0.498, 1.0};

bool IsWaning(int moonPhase) { return moonPhase == 3 || moonPhase == 6 || moonPhase == 7; }

/// The shadow before it is turned, about the origin, on the side given by its sign: along the limb
/// from one cusp to the other, by chords of `step` degrees, and back along the terminator. What the
/// limb stands out over the disc is clipped; the terminator has to end at the disc's own poles, or
/// small Moons are darker than they are.
UIBezierPath Shadow(double limbRadius, double discRadius, double side, double illumination,
                    int step) {
  constexpr int kHalfTurn = 180;
  constexpr int kFirstCusp = 270;
  UIBezierPath path;
  path.moveTo({0.0, -limbRadius});
  for (int t = kFirstCusp + step; t < kFirstCusp + kHalfTurn; t += step) {
    const double angle = t * ephemeris::kPi / kHalfTurn;
    path.lineTo({side * limbRadius * std::cos(angle), limbRadius * std::sin(angle)});
  }
  path.lineTo({0.0, limbRadius});
  // Half an ellipse, of two quarters.
  constexpr double kQuarterCurve = 4.0 * (std::numbers::sqrt2 - 1.0) / 3.0;
  const double y = discRadius;
  const double x = side * discRadius * (2.0 * illumination - 1.0);
  path.lineTo({0.0, y});
  path.curveTo({kQuarterCurve * x, y}, {x, kQuarterCurve * y}, {x, 0.0});
  path.curveTo({x, -kQuarterCurve * y}, {kQuarterCurve * x, -y}, {0.0, -y});
  path.close();
  return path;
}

}  // namespace

double MoonShadow::skyBrightness(double sunElevation) {
  constexpr double kTwilight = 4.0;
  if (std::fabs(sunElevation) <= kTwilight) return (sunElevation - kTwilight) * 0.125 + 1.0;
  return sunElevation < 0.0 ? 0.0 : 1.0;
}

UIImage MoonShadow::drawShadowOnMoonImage(const UIImage& image, double withZenithAngle,
                                          int moonPhase, double sunElevation,
                                          double phaseIllumination, bool isSupermoon) {
  return drawShadowOnMoonImage(&image, CGSize{}, withZenithAngle, moonPhase, sunElevation,
                               phaseIllumination, -1.0, isSupermoon);
}

UIImage MoonShadow::moonShadowImageOfSize(CGSize size, double withZenithAngle, int moonPhase,
                                          double sunElevation, double phaseIllumination,
                                          double shadowRadius, bool isSupermoon) {
  return drawShadowOnMoonImage(nullptr, size, withZenithAngle, moonPhase, sunElevation,
                               phaseIllumination, shadowRadius, isSupermoon);
}

UIImage MoonShadow::drawShadowOnMoonImage(const UIImage* image, CGSize ofSize,
                                          double withZenithAngle, int moonPhase,
                                          double sunElevation, double phaseIllumination,
                                          double shadowRadius, bool isSupermoon) {
  const bool hasSize = ofSize.width > 0.0 && ofSize.height > 0.0;
  const CGSize size = hasSize || image == nullptr ? ofSize : image->size;
  const CGRect disc{0.0, 0.0, size.width, size.height};
  const CGPoint center = disc.center();
  platform::ImageContext context(size);
  context.save();
  context.clip(UIBezierPath::ellipse(disc));
  if (image != nullptr) {
    context.save();
    context.concatenate(CGAffineTransform::translation(-center.x, -center.y)
                            .then(CGAffineTransform::rotation(withZenithAngle))
                            .then(CGAffineTransform::translation(center.x, center.y)));
    // A point more on every side: the picture's soft edge stays outside.
    context.drawImage(*image, disc.insetBy(-1.0), {});
    context.restore();
  }
  if (phaseIllumination < 1.0) {
    constexpr double kRim = 0.5;
    constexpr double kLargeImage = 100.0;
    const double radius = shadowRadius > 0.0 ? shadowRadius : size.height / 2.0 + kRim;
    const int step = size.width < kLargeImage ? 10 : 1;
    context.save();
    // Turned in a frame whose y axis points up, as the angle is counted counter-clockwise.
    context.concatenate(CGAffineTransform::rotation(-ephemeris::kPi - withZenithAngle)
                            .then(CGAffineTransform::scale(1.0, -1.0))
                            .then(CGAffineTransform::translation(center.x, center.y)));
    context.fill(Shadow(radius, std::min(radius, size.height / 2.0),
                        IsWaning(moonPhase) ? -1.0 : 1.0, phaseIllumination, step),
                 platform::UIColor::interpolatedMoonShadowColor(skyBrightness(sunElevation)));
    context.restore();
  }
  context.restore();
  if (isSupermoon) {
    constexpr double kOutline = 0.5;
    const CGRect middle = disc.insetBy(1.0);
    context.stroke(UIBezierPath::ellipse(middle), kRingOutlineColor, {kRingWidth + 2.0 * kOutline});
    context.stroke(UIBezierPath::ellipse(middle), kRingColor, {kRingWidth});
  }
  return context.image();
}

}  // namespace lumenquest::events
