#pragma once

#include <algorithm>
#include <cmath>

#include "platform/ui_color.h"

namespace lumenquest::testing {

/// Relative luminance of an opaque colour, from 0 to 1. Source: W3C, WCAG 2.2, definitions.
inline double luminanceOf(const platform::UIColor& color) {
  const auto linear = [](double c) {
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

/// Contrast of two opaque colours, from 1 to 21. Source: as above.
inline double contrastOf(const platform::UIColor& a, const platform::UIColor& b) {
  const auto [darker, lighter] = std::minmax({luminanceOf(a), luminanceOf(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

}  // namespace lumenquest::testing
