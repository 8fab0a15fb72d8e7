#pragma once

namespace lumenquest::platform {

// Points are the unit of all lengths; x grows to the right, y downwards.

struct CGPoint {
  double x = 0.0;
  double y = 0.0;

  bool operator==(const CGPoint&) const = default;
};

struct CGSize {
  double width = 0.0;
  double height = 0.0;

  bool operator==(const CGSize&) const = default;
};

struct CGRect {
  double x = 0.0;
  double y = 0.0;
  double width = 0.0;
  double height = 0.0;

  bool operator==(const CGRect&) const = default;

  /// With its left and top edges, without its right and bottom ones.
  bool contains(CGPoint point) const {
    return x <= point.x && point.x < x + width && y <= point.y && point.y < y + height;
  }
  CGPoint center() const { return {x + width / 2.0, y + height / 2.0}; }
  /// Smaller by this much on every side.
  CGRect insetBy(double inset) const {
    return {x + inset, y + inset, width - 2.0 * inset, height - 2.0 * inset};
  }
};

/// A point (x, y) goes to (a x + c y + tx, b x + d y + ty).
struct CGAffineTransform {
  double a = 1.0;
  double b = 0.0;
  double c = 0.0;
  double d = 1.0;
  double tx = 0.0;
  double ty = 0.0;

  bool operator==(const CGAffineTransform&) const = default;

  static CGAffineTransform translation(double x, double y) { return {1.0, 0.0, 0.0, 1.0, x, y}; }
  static CGAffineTransform scale(double x, double y) { return {x, 0.0, 0.0, y, 0.0, 0.0}; }
  /// Radians, from the x axis towards the y axis: clockwise on a screen.
  static CGAffineTransform rotation(double angle);

  /// This transform, and after it another.
  CGAffineTransform then(const CGAffineTransform& next) const;
  CGPoint apply(CGPoint point) const {
    return {a * point.x + c * point.y + tx, b * point.x + d * point.y + ty};
  }
};

}  // namespace lumenquest::platform
