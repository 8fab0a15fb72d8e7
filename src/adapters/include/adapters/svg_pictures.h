#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/drawing.h"

namespace lumenquest::adapters {

/// Reads a picture from the part of SVG that our artwork is drawn in:
/// - `svg` with viewBox "0 0 width height"; `title` and `desc`, which are not shown; `g`;
/// - `path`, `circle`, `ellipse`, `rect` (rx), with fill, fill-opacity, fill-rule, stroke,
///   stroke-opacity, stroke-width, stroke-linecap (butt, round), stroke-linejoin (miter, round),
///   opacity, transform; a `g` hands all of these on. A group's opacity counts for each shape.
/// - paints `none`, `#rgb`, `#rrggbb`, `currentColor`, `url(#id)`;
/// - `linearGradient` and `radialGradient` with gradientUnits="userSpaceOnUse";
/// - `clipPath` of one shape; a clipped thing is not clipped again inside.
///
/// Throws std::runtime_error, "file:line: what is wrong", for anything else: nothing is left out in
/// silence. `file` is for that message only.
/// Source: W3C, Scalable Vector Graphics (SVG) 2, chapters 7 to 9 and 13 and appendix B.2.
platform::UIImage readSvgPicture(std::string_view svg, const std::string& file);

/// #rgb, #rrggbb or #rrggbbaa; absent for anything else.
std::optional<platform::UIColor> colorFromHex(std::string_view text);

}  // namespace lumenquest::adapters
