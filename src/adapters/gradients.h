#pragma once

#include <optional>

#include "platform/drawing.h"

namespace lumenquest::adapters {

/// A gradient without extent is its last colour everywhere, as in SVG; absent for one that has an
/// extent. Fully transparent for one without stops.
std::optional<platform::UIColor> onlyColorOf(const platform::Gradient& gradient);

/// The colour as both kinds of file can have it: red, green and blue the nearest of 256 steps, all
/// within 0 to 1. What is not a number counts as 0.
platform::UIColor shownColor(const platform::UIColor& color);

/// True for one that brings all points onto a line or into one point.
bool isCollapsing(const platform::CGAffineTransform& transform);

/// The largest ratio between the width of a line and the length of the tip of a mitred corner;
/// sharper ones are cut off. SVG's default.
inline constexpr double kMiterLimit = 4.0;

}  // namespace lumenquest::adapters
