#include "gradients.h"

#include <algorithm>
#include <cmath>

namespace lumenquest::adapters {

using platform::CGAffineTransform;
using platform::Gradient;
using platform::UIColor;

std::optional<UIColor> onlyColorOf(const Gradient& gradient) {
  if (gradient.stops.empty()) return UIColor{0.0, 0.0, 0.0, 0.0};
  const bool hasExtent =
      gradient.isRadial ? gradient.radius > 0.0 : !(gradient.start == gradient.end);
  if (hasExtent && gradient.stops.size() > 1 && !isCollapsing(gradient.transform)) {
    return std::nullopt;
  }
  return gradient.stops.back().color;
}

UIColor shownColor(const UIColor& color) {
  const auto fraction = [](double x) { return x > 0.0 ? std::min(x, 1.0) : 0.0; };
  const auto step = [&](double x) { return std::round(fraction(x) * 255.0) / 255.0; };
  return {step(color.red), step(color.green), step(color.blue), fraction(color.alpha)};
}

bool isCollapsing(const CGAffineTransform& t) { return t.a * t.d - t.b * t.c == 0.0; }

}  // namespace lumenquest::adapters
