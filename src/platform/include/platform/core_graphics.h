#pragma once

namespace lumenquest::platform {

struct CGPoint {
  double x = 0.0;
  double y = 0.0;
};

/// A rectangle, y growing downwards. It contains its left and top edges, not its right and bottom.
struct CGRect {
  double x = 0.0;
  double y = 0.0;
  double width = 0.0;
  double height = 0.0;

  bool contains(CGPoint point) const {
    return x <= point.x && point.x < x + width && y <= point.y && point.y < y + height;
  }
};

}  // namespace lumenquest::platform
