#include "platform/ui_color.h"

#include <algorithm>
#include <cmath>

namespace lumenquest::platform {

namespace {

bool IsFraction(double x) { return 0.0 <= x && x <= 1.0; }

double AsFraction(double x) { return std::isfinite(x) ? std::clamp(x, 0.0, 1.0) : 0.0; }

}  // namespace

UIColor UIColor::fromHSBA(const HSBA& hsba) {
  const double hue = std::isfinite(hsba.hue) ? hsba.hue - std::floor(hsba.hue) : 0.0;
  const double saturation = AsFraction(hsba.saturation);
  const double brightness = AsFraction(hsba.brightness);
  const double alpha = AsFraction(hsba.alpha);

  // Six sectors of the circle; in each, one component is the largest, one the smallest, and the
  // third rises (even sectors) or falls (odd ones).
  const double sectors = hue * 6.0;
  const double sector = std::floor(sectors);
  const double within = sectors - sector;
  const double least = brightness * (1.0 - saturation);
  const double falling = brightness * (1.0 - saturation * within);
  const double rising = brightness * (1.0 - saturation * (1.0 - within));
  switch (static_cast<int>(sector)) {
    case 1:
      return {falling, brightness, least, alpha};
    case 2:
      return {least, brightness, rising, alpha};
    case 3:
      return {least, falling, brightness, alpha};
    case 4:
      return {rising, least, brightness, alpha};
    case 5:
      return {brightness, least, falling, alpha};
    default:  // 0, and 6 where a hue just below 0 was rounded up
      return {brightness, rising, least, alpha};
  }
}

UIColor::HSBA UIColor::toHSBA() const {
  if (!IsFraction(red) || !IsFraction(green) || !IsFraction(blue) || !IsFraction(alpha)) return {};
  const double largest = std::max({red, green, blue});
  const double range = largest - std::min({red, green, blue});
  if (range == 0.0) return {0.0, 0.0, largest, alpha};

  double sectors = 0.0;
  if (largest == red) {
    sectors = (green - blue) / range;
    if (sectors < 0.0) sectors += 6.0;
  } else if (largest == green) {
    sectors = 2.0 + (blue - red) / range;
  } else {
    sectors = 4.0 + (red - green) / range;
  }
  return {sectors / 6.0, range / largest, largest, alpha};
}

UIColor UIColor::interpolatedMoonShadowColor(double fraction) {
  HSBA hsba = kDaySkyColor.toHSBA();
  hsba.brightness *= AsFraction(fraction);
  return fromHSBA(hsba);
}

}  // namespace lumenquest::platform
