#include "platform/drawing.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/assertion.h"

namespace lumenquest::platform {

CGAffineTransform CGAffineTransform::rotation(double angle) {
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  return {cosine, sine, -sine, cosine, 0.0, 0.0};
}

CGAffineTransform CGAffineTransform::then(const CGAffineTransform& next) const {
  const CGPoint origin = next.apply({tx, ty});
  return {next.a * a + next.c * b,
          next.b * a + next.d * b,
          next.a * c + next.c * d,
          next.b * c + next.d * d,
          origin.x,
          origin.y};
}

UIBezierPath UIBezierPath::rect(const CGRect& rect) {
  UIBezierPath path;
  path.moveTo({rect.x, rect.y});
  path.lineTo({rect.x + rect.width, rect.y});
  path.lineTo({rect.x + rect.width, rect.y + rect.height});
  path.lineTo({rect.x, rect.y + rect.height});
  path.close();
  return path;
}

namespace {

/// Part of the radius at which the control points of a quarter circle stand; its curve is off the
/// circle by at most 0.02 % of the radius.
constexpr double kArcControl = 0.551915024494;

/// A quarter of an ellipse from one point to another, around the corner of its box.
void AddCorner(UIBezierPath& path, CGPoint from, CGPoint corner, CGPoint to) {
  const auto towards = [&](CGPoint start) {
    return CGPoint{start.x + (corner.x - start.x) * kArcControl,
                   start.y + (corner.y - start.y) * kArcControl};
  };
  path.curveTo(towards(from), towards(to), to);
}

UIBezierPath WithCorners(const CGRect& r, double rx, double ry) {
  const double right = r.x + r.width;
  const double bottom = r.y + r.height;
  // An ellipse has no sides between its corners.
  const bool hasHorizontalSides = rx < r.width / 2.0;
  const bool hasVerticalSides = ry < r.height / 2.0;
  UIBezierPath path;
  path.moveTo({r.x + rx, r.y});
  if (hasHorizontalSides) path.lineTo({right - rx, r.y});
  AddCorner(path, {right - rx, r.y}, {right, r.y}, {right, r.y + ry});
  if (hasVerticalSides) path.lineTo({right, bottom - ry});
  AddCorner(path, {right, bottom - ry}, {right, bottom}, {right - rx, bottom});
  if (hasHorizontalSides) path.lineTo({r.x + rx, bottom});
  AddCorner(path, {r.x + rx, bottom}, {r.x, bottom}, {r.x, bottom - ry});
  if (hasVerticalSides) path.lineTo({r.x, r.y + ry});
  AddCorner(path, {r.x, r.y + ry}, {r.x, r.y}, {r.x + rx, r.y});
  path.close();
  return path;
}

}  // namespace

UIBezierPath UIBezierPath::roundedRect(const CGRect& rect, double cornerRadius) {
  const double radius =
      std::clamp(cornerRadius, 0.0, std::max(0.0, std::min(rect.width, rect.height) / 2.0));
  return radius == 0.0 ? UIBezierPath::rect(rect) : WithCorners(rect, radius, radius);
}

UIBezierPath UIBezierPath::ellipse(const CGRect& in) {
  return WithCorners(in, in.width / 2.0, in.height / 2.0);
}

UIBezierPath::Segment UIBezierPath::Segments::operator[](std::size_t index) const {
  SegmentIterator at = begin();
  while (index-- > 0) ++at;
  return *at;
}

void UIBezierPath::Add(Verb verb, std::initializer_list<CGPoint> points) {
  verbs_.push_back(verb);
  points_.insert(points_.end(), points);
}

void UIBezierPath::append(const UIBezierPath& path) {
  verbs_.insert(verbs_.end(), path.verbs_.begin(), path.verbs_.end());
  points_.insert(points_.end(), path.points_.begin(), path.points_.end());
}

UIBezierPath UIBezierPath::transformed(const CGAffineTransform& transform) const {
  UIBezierPath path = *this;
  for (CGPoint& point : path.points_) point = transform.apply(point);
  return path;
}

namespace {

Paint Resolved(const Paint& paint, const UIColor& color) {
  if (const auto* const current = std::get_if<CurrentColor>(&paint)) {
    return color.withAlpha(color.alpha * current->alpha);
  }
  return paint;
}

/// From a picture's coordinates to those of the box that it fills.
CGAffineTransform Placement(const UIImage& image, const CGRect& rect) {
  return CGAffineTransform::scale(rect.width / image.size.width, rect.height / image.size.height)
      .then(CGAffineTransform::translation(rect.x, rect.y));
}

}  // namespace

void Canvas::drawImage(const UIImage& image, const CGRect& rect, const UIColor& color) {
  save();
  concatenate(Placement(image, rect));
  drawShapes(image, color);
  restore();
}

void Canvas::drawEmbedded(const EmbeddedImage& embedded) {
  save();
  concatenate(embedded.transform);
  drawShapes(*embedded.image, embedded.color);
  restore();
}

void Canvas::drawShapes(const UIImage& image, const UIColor& color) {
  const UIBezierPath* clipped = nullptr;
  for (const PictureShape& shape : image.shapes) {
    if (shape.clip.get() != clipped) {
      if (clipped != nullptr) restore();
      clipped = shape.clip.get();
      if (clipped != nullptr) {
        save();
        clip(*clipped);
      }
    }
    if (shape.embedded) {
      drawEmbedded(*shape.embedded);
      continue;
    }
    if (shape.fill) fill(shape.path, Resolved(*shape.fill, color));
    if (shape.strokePaint) stroke(shape.path, Resolved(*shape.strokePaint, color), shape.stroke);
  }
  if (clipped != nullptr) restore();
}

ImageContext::ImageContext(CGSize size) : image_{size, {}}, states_(1) {}

ImageContext::~ImageContext() = default;

void ImageContext::save() { states_.push_back(states_.back()); }

void ImageContext::restore() {
  LUMENQUEST_ASSERT(states_.size() > 1);
  states_.pop_back();
}

void ImageContext::concatenate(const CGAffineTransform& transform) {
  states_.back().transform = transform.then(states_.back().transform);
}

void ImageContext::clip(const UIBezierPath& path) {
  // One clip at a time is all that our pictures need; the inner one has to lie within the outer.
  states_.back().clip =
      std::make_shared<const UIBezierPath>(path.transformed(states_.back().transform));
}

void ImageContext::fill(const UIBezierPath& path, const Paint& paint) {
  const State& state = states_.back();
  PictureShape shape{path.transformed(state.transform), paint, {}, {}, state.clip};
  if (auto* const gradient = std::get_if<Gradient>(&*shape.fill)) {
    gradient->transform = gradient->transform.then(state.transform);
  }
  image_.shapes.push_back(std::move(shape));
}

void ImageContext::stroke(const UIBezierPath& path, const Paint& paint, const Stroke& stroke) {
  const State& state = states_.back();
  const CGAffineTransform& t = state.transform;
  PictureShape shape{path.transformed(t), {}, paint, stroke, state.clip};
  // The mean of the two axes' scales: our transforms keep shapes similar.
  shape.stroke.width *= std::sqrt(std::fabs(t.a * t.d - t.b * t.c));
  image_.shapes.push_back(std::move(shape));
}

void ImageContext::embedImage(std::shared_ptr<const UIImage> image, const CGRect& rect,
                              const UIColor& color) {
  LUMENQUEST_ASSERT(image != nullptr);
  const State& state = states_.back();
  const CGAffineTransform transform = Placement(*image, rect).then(state.transform);
  PictureShape shape;
  shape.clip = state.clip;
  shape.embedded = EmbeddedImage{std::move(image), transform, color};
  image_.shapes.push_back(std::move(shape));
}

void ImageContext::drawText(const std::string&, const TextStyle&, const UIColor&, const CGRect&) {
  LUMENQUEST_ASSERT(false && "a picture holds no text");
}

}  // namespace lumenquest::platform
