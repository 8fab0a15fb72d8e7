#include "widgets/view/layout.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numbers>
#include <tuple>
#include <type_traits>
#include <utility>

namespace lumenquest::widgets::view {

using platform::CGPoint;
using platform::CGRect;
using platform::CGSize;

namespace {

constexpr double kUnbounded = std::numeric_limits<double>::infinity();
/// Points by which measured and offered widths may differ, as they come from different sums.
constexpr double kSlack = 0.5;

/// Where a part stands in a longer whole.
double Offset(Alignment alignment, double whole, double part) {
  switch (alignment) {
    case Alignment::start:
      return 0.0;
    case Alignment::center:
      return (whole - part) / 2.0;
    case Alignment::end:
      break;
  }
  return whole - part;
}

class Layouter {
 public:
  Layouter(bool isRightToLeft, platform::TextMeasurer& measurer)
      : isRightToLeft_(isRightToLeft), measurer_(measurer) {}

  /// What an element takes of the room that it is offered; either length may be unbounded.
  CGSize Fit(const Element& element, CGSize room) {
    // Stacks ask their children several times, and these theirs: without a memory the questions
    // multiply with every level.
    const auto [found, isNew] =
        fits_.try_emplace(std::tuple(&element.node(), room.width, room.height));
    if (isNew) {
      found->second =
          std::visit([&](const auto& kind) { return FitKind(kind, room); }, element.node().base());
    }
    return found->second;
  }

  Box Place(const Element& element, const CGRect& rect) {
    Box box{&element.node(), rect, {}, false, {}};
    std::visit([&](const auto& kind) { PlaceKind(kind, box); }, element.node().base());
    return box;
  }

 private:
  struct SetText {
    platform::TextStyle style;
    platform::TextMetrics metrics;
  };

  SetText Set(const Text& text, CGSize room) {
    constexpr double kStep = 0.05;
    const CGSize roomy{room.width + kSlack, room.height + kSlack};
    // Type scales as it is: one measurement tells of all sizes of an unbroken text.
    const platform::TextMetrics& whole = Unbroken(text);
    platform::TextStyle style = text.style;
    style.isRightToLeft = isRightToLeft_;
    for (double scale = 1.0;; scale -= kStep) {
      const bool isSmallest = scale <= text.minimumScale + 1e-9;
      const double shrunk = isSmallest ? text.minimumScale : scale;
      style.size = text.style.size * shrunk;
      platform::TextMetrics metrics{{whole.size.width * shrunk, whole.size.height * shrunk},
                                    whole.baseline * shrunk,
                                    whole.lines,
                                    whole.isTruncated};
      const bool isBroken = metrics.size.width > roomy.width;
      if (isBroken && (isSmallest || style.lineLimit > 1)) {
        metrics = measurer_.measure(text.text, style, roomy.width);
      }
      // A single line is as high as it is, however little height a stack first offers.
      const bool fits = !metrics.isTruncated && metrics.size.width <= roomy.width &&
                        (metrics.lines == 1 || metrics.size.height <= roomy.height);
      if (fits || isSmallest) return {style, metrics};
    }
  }

  /// A text at its full size in as much width as it wants.
  const platform::TextMetrics& Unbroken(const Text& text) {
    const auto [found, isNew] = unbroken_.try_emplace(&text);
    if (isNew) {
      platform::TextStyle style = text.style;
      style.isRightToLeft = isRightToLeft_;
      found->second = measurer_.measure(text.text, style, kUnbounded);
    }
    return found->second;
  }

  CGSize FitKind(const Text& text, CGSize room) {
    if (text.text.empty()) return {};
    const CGSize size = Set(text, room).metrics.size;
    return {std::min(size.width, std::max(room.width, 0.0)), size.height};
  }
  CGSize FitKind(const Image& image, CGSize) { return image.size; }
  CGSize FitKind(const Picture& picture, CGSize) { return picture.size; }
  CGSize FitKind(const Shape&, CGSize room) {
    return {std::isfinite(room.width) ? room.width : 0.0,
            std::isfinite(room.height) ? room.height : 0.0};
  }
  CGSize FitKind(const Spacer&, CGSize) { return {}; }
  CGSize FitKind(const DepthStack& stack, CGSize room) {
    CGSize size;
    for (const Element& child : stack.children) {
      const CGSize taken = Fit(child, room);
      size = {std::max(size.width, taken.width), std::max(size.height, taken.height)};
    }
    return size;
  }
  CGSize FitKind(const Choice& choice, CGSize room) { return Fit(Chosen(choice, room), room); }
  const Element& Chosen(const Choice& choice, CGSize room) {
    if (choice.leastWidth) {
      const bool isWide = room.width + kSlack >= *choice.leastWidth;
      return isWide ? choice.children.front() : choice.children.back();
    }
    for (const Element& form : choice.children) {
      const bool fits = choice.axis == Axis::horizontal
                            ? Fit(form, {kUnbounded, kUnbounded}).width <= room.width + kSlack
                            : Fit(form, {room.width, kUnbounded}).height <= room.height + kSlack;
      if (fits) return form;
    }
    return choice.children.back();
  }
  CGSize FitKind(const Padding& padding, CGSize room) {
    const Insets& i = padding.insets;
    const CGSize child = Fit(padding.child, {std::max(0.0, room.width - i.leading - i.trailing),
                                             std::max(0.0, room.height - i.top - i.bottom)});
    return {child.width + i.leading + i.trailing, child.height + i.top + i.bottom};
  }
  CGSize FitKind(const Frame& frame, CGSize room) {
    const CGSize child =
        Fit(frame.child, {frame.width.value_or(room.width), frame.height.value_or(room.height)});
    const auto length = [](std::optional<double> fixed, bool fills, double offered, double needed) {
      if (fixed) return *fixed;
      return fills && std::isfinite(offered) ? std::max(offered, needed) : needed;
    };
    return {length(frame.width, frame.fillsWidth, room.width, child.width),
            length(frame.height, frame.fillsHeight, room.height, child.height)};
  }
  CGSize FitKind(const Background& background, CGSize room) { return Fit(background.child, room); }
  CGSize FitKind(const Link& link, CGSize room) { return Fit(link.child, room); }
  CGSize FitKind(const Label& label, CGSize room) { return Fit(label.child, room); }

  CGSize FitKind(const Stack& stack, CGSize room) {
    const std::vector<CGSize> sizes = Distribute(stack, room);
    const bool isHorizontal = stack.axis == Axis::horizontal;
    double along = stack.spacing * Gaps(stack);
    double across = 0.0;
    for (const CGSize& size : sizes) {
      along += isHorizontal ? size.width : size.height;
      across = std::max(across, isHorizontal ? size.height : size.width);
    }
    return isHorizontal ? CGSize{along, across} : CGSize{across, along};
  }

  /// Whether an element takes all the length that it is offered, more than it needs.
  static bool Fills(const Element& element, Axis axis) {
    const bool isHorizontal = axis == Axis::horizontal;
    return std::visit(
        [&](const auto& kind) {
          using Kind = std::decay_t<decltype(kind)>;
          if constexpr (std::is_same_v<Kind, Shape>) {
            return true;
          } else if constexpr (std::is_same_v<Kind, Frame>) {
            if (isHorizontal ? kind.width.has_value() : kind.height.has_value()) return false;
            return (isHorizontal ? kind.fillsWidth : kind.fillsHeight) || Fills(kind.child, axis);
          } else if constexpr (requires { kind.children; }) {
            return std::any_of(kind.children.begin(), kind.children.end(),
                               [&](const Element& child) { return Fills(child, axis); });
          } else if constexpr (requires { kind.child; }) {
            return Fills(kind.child, axis);
          } else {
            return false;
          }
        },
        element.node().base());
  }

  static double Gaps(const Stack& stack) {
    return stack.children.empty() ? 0.0 : static_cast<double>(stack.children.size() - 1);
  }

  /// The sizes of a stack's children.
  std::vector<CGSize> Distribute(const Stack& stack, CGSize room) {
    const bool isHorizontal = stack.axis == Axis::horizontal;
    const auto length = [&](const CGSize& size) { return isHorizontal ? size.width : size.height; };
    const auto fit = [&](const Element& child, double along) {
      return Fit(child, isHorizontal ? CGSize{along, room.height} : CGSize{room.width, along});
    };
    const std::vector<Element>& children = stack.children;
    std::vector<CGSize> sizes(children.size());
    std::vector<std::size_t> rigidFirst;
    std::vector<std::size_t> spacers;
    std::vector<double> flexibility(children.size());
    double left = length(room) - stack.spacing * Gaps(stack);
    for (std::size_t i = 0; i < children.size(); ++i) {
      if (const auto* const spacer = std::get_if<Spacer>(&children[i].node())) {
        spacers.push_back(i);
        left -= spacer->minimumLength;
      } else {
        rigidFirst.push_back(i);
        flexibility[i] = Fills(children[i], stack.axis)
                             ? kUnbounded
                             : length(fit(children[i], kUnbounded)) - length(fit(children[i], 0.0));
      }
    }
    std::stable_sort(rigidFirst.begin(), rigidFirst.end(),
                     [&](std::size_t a, std::size_t b) { return flexibility[a] < flexibility[b]; });
    for (std::size_t n = 0; n < rigidFirst.size(); ++n) {
      const std::size_t i = rigidFirst[n];
      const double share = std::max(0.0, left) / static_cast<double>(rigidFirst.size() - n);
      sizes[i] = fit(children[i], share);
      left -= length(sizes[i]);
    }
    for (const std::size_t i : spacers) {
      double extent = std::get<Spacer>(children[i].node()).minimumLength;
      if (std::isfinite(left)) extent += std::max(0.0, left) / static_cast<double>(spacers.size());
      sizes[i] = isHorizontal ? CGSize{extent, 0.0} : CGSize{0.0, extent};
    }
    return sizes;
  }

  void PlaceKind(const Text& text, Box& box) {
    if (text.text.empty()) return;
    const SetText set = Set(text, {box.rect.width, box.rect.height});
    box.textStyle = set.style;
    box.isTruncated = set.metrics.isTruncated;
  }
  void PlaceKind(const Image&, Box&) {}
  void PlaceKind(const Picture&, Box&) {}
  void PlaceKind(const Shape&, Box&) {}
  void PlaceKind(const Spacer&, Box&) {}
  void PlaceKind(const DepthStack& stack, Box& box) {
    for (const Element& child : stack.children) {
      PlaceAligned(child, box.rect, Alignment::center, Alignment::center, box);
    }
  }
  void PlaceKind(const Choice& choice, Box& box) {
    box.children.push_back(Place(Chosen(choice, {box.rect.width, box.rect.height}), box.rect));
  }
  void PlaceKind(const Padding& padding, Box& box) {
    const Insets& i = padding.insets;
    box.children.push_back(
        Place(padding.child, {box.rect.x + i.leading, box.rect.y + i.top,
                              std::max(0.0, box.rect.width - i.leading - i.trailing),
                              std::max(0.0, box.rect.height - i.top - i.bottom)}));
  }
  void PlaceKind(const Frame& frame, Box& box) {
    PlaceAligned(frame.child, box.rect, frame.horizontal, frame.vertical, box);
  }
  void PlaceKind(const Background& background, Box& box) {
    box.children.push_back(Place(background.child, box.rect));
  }
  void PlaceKind(const Link& link, Box& box) {
    box.children.push_back(Place(link.child, box.rect));
  }
  void PlaceKind(const Label& label, Box& box) {
    box.children.push_back(Place(label.child, box.rect));
  }
  void PlaceKind(const Stack& stack, Box& box) {
    const CGRect& rect = box.rect;
    const std::vector<CGSize> sizes = Distribute(stack, {rect.width, rect.height});
    const bool isHorizontal = stack.axis == Axis::horizontal;
    double along = isHorizontal ? rect.x : rect.y;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
      const CGSize& size = sizes[i];
      const CGRect place =
          isHorizontal ? CGRect{along, rect.y + Offset(stack.alignment, rect.height, size.height),
                                size.width, size.height}
                       : CGRect{rect.x + Offset(stack.alignment, rect.width, size.width), along,
                                size.width, size.height};
      box.children.push_back(Place(stack.children[i], place));
      along += (isHorizontal ? size.width : size.height) + stack.spacing;
    }
  }

  void PlaceAligned(const Element& child, const CGRect& rect, Alignment horizontal,
                    Alignment vertical, Box& box) {
    const CGSize size = Fit(child, {rect.width, rect.height});
    box.children.push_back(Place(
        child, {rect.x + Offset(horizontal, rect.width, size.width),
                rect.y + Offset(vertical, rect.height, size.height), size.width, size.height}));
  }

  bool isRightToLeft_;
  platform::TextMeasurer& measurer_;
  std::map<const Text*, platform::TextMetrics> unbroken_;
  std::map<std::tuple<const Node*, double, double>, CGSize> fits_;
};

void Mirror(Box& box, double width) {
  box.rect.x = width - box.rect.x - box.rect.width;
  for (Box& child : box.children) Mirror(child, width);
}

/// A picture's shapes, wider by a thin line all around. `unit`: a point in the picture's units.
platform::UIImage Outline(const platform::UIImage& picture, double unit) {
  constexpr double kWidth = 0.5;
  platform::UIImage outline{picture.size, {}};
  for (const platform::PictureShape& shape : picture.shapes) {
    const double own = shape.strokePaint ? shape.stroke.width : 0.0;
    outline.shapes.push_back({shape.path,
                              {},
                              platform::CurrentColor{},
                              {own + 2.0 * kWidth * unit, shape.stroke.ends, true}});
  }
  return outline;
}

class Painter {
 public:
  Painter(platform::Canvas& canvas, const Environment& environment, platform::AssetCatalog& assets)
      : canvas_(canvas), environment_(environment), assets_(assets) {}

  void Paint(const Box& box) {
    std::visit([&](const auto& kind) { PaintKind(kind, box); }, box.node->base());
  }

 private:
  void PaintChildren(const Box& box) {
    for (const Box& child : box.children) Paint(child);
  }

  void PaintKind(const Text& text, const Box& box) {
    if (text.text.empty()) return;
    // The slack that the measurement had, so that no hair's breadth costs a word.
    const double before =
        environment_.layoutDirection == LayoutDirection::rightToLeft ? kSlack : 0.0;
    const CGRect rect{box.rect.x - before, box.rect.y, box.rect.width + kSlack, box.rect.height};
    canvas_.drawText(text.text, box.textStyle, Resolved(text.color, text.isAccented), rect);
  }
  void PaintKind(const Image& image, const Box& box) {
    const auto found = assets_.imageNamed(image.name);
    if (!found) return;
    const CGPoint center = box.rect.center();
    const bool isMirrored =
        image.isMirrored && environment_.layoutDirection == LayoutDirection::rightToLeft;
    canvas_.save();
    canvas_.concatenate(
        platform::CGAffineTransform::translation(-center.x, -center.y)
            .then(platform::CGAffineTransform::scale(isMirrored ? -1.0 : 1.0, 1.0))
            .then(platform::CGAffineTransform::rotation(image.rotation * std::numbers::pi / 180.0))
            .then(platform::CGAffineTransform::translation(center.x, center.y)));
    if (image.outline && !environment_.isTinted()) {
      canvas_.drawImage(Outline(*found, found->size.width / box.rect.width), box.rect,
                        Resolved(*image.outline, false));
    }
    canvas_.drawImage(*found, box.rect, Resolved(image.color, image.isAccented));
    canvas_.restore();
  }
  void PaintKind(const Picture& picture, const Box& box) {
    canvas_.drawImage(*picture.image, box.rect, {});
  }
  void PaintKind(const Shape& shape, const Box& box) {
    canvas_.fill(platform::UIBezierPath::roundedRect(box.rect, shape.cornerRadius),
                 Resolved(shape.fill, shape.isAccented));
  }
  void PaintKind(const Background& background, const Box& box) {
    canvas_.fill(platform::UIBezierPath::roundedRect(box.rect, background.cornerRadius),
                 Resolved(background.fill, false));
    PaintChildren(box);
  }
  void PaintKind(const Link& link, const Box& box) {
    // A link within a link takes its place: documents know no nested ones.
    const std::string outer = std::exchange(link_, link.url);
    if (!outer.empty()) canvas_.endLink();
    canvas_.beginLink(link_);
    PaintChildren(box);
    canvas_.endLink();
    link_ = outer;
    if (!outer.empty()) canvas_.beginLink(outer);
  }
  void PaintKind(const Label& label, const Box& box) {
    canvas_.beginLabel(label.text);
    PaintChildren(box);
    canvas_.endLabel();
  }
  template <typename Kind>
  void PaintKind(const Kind&, const Box& box) {
    PaintChildren(box);
  }

  platform::UIColor Resolved(const Color& color, bool isAccented) {
    platform::UIColor resolved{0.0, 0.0, 0.0, 1.0};
    if (const auto* const value = std::get_if<platform::UIColor>(&color)) {
      resolved = *value;
    } else {
      const auto& name = std::get<platform::NamedColor>(color);
      // The tinted variant has no colours of its own: how far back a text stands is its opacity.
      if (const auto found = assets_.colorNamed(name.name, environment_.colorScheme)) {
        resolved = *found;
        if (environment_.isTinted()) resolved.alpha *= TintedOpacity(name.name);
      }
      resolved.alpha *= name.alpha;
    }
    if (!environment_.isTinted()) return resolved;
    const platform::UIColor flat =
        isAccented ? environment_.accent : platform::UIColor{1.0, 1.0, 1.0, 1.0};
    return flat.withAlpha(resolved.alpha);
  }

  static double TintedOpacity(const std::string& name) {
    if (name == "contentTertiary") return 0.75;
    if (name == "borderPrimary") return 0.55;
    return 1.0;
  }

  platform::Canvas& canvas_;
  const Environment& environment_;
  platform::AssetCatalog& assets_;
  std::string link_;
};

}  // namespace

Box layOut(const Element& element, CGSize size, const Environment& environment,
           platform::TextMeasurer& measurer) {
  const bool isRightToLeft = environment.layoutDirection == LayoutDirection::rightToLeft;
  Box box = Layouter(isRightToLeft, measurer).Place(element, {0.0, 0.0, size.width, size.height});
  if (isRightToLeft) Mirror(box, size.width);
  return box;
}

void draw(const Box& box, platform::Canvas& canvas, const Environment& environment,
          platform::AssetCatalog& assets) {
  Painter(canvas, environment, assets).Paint(box);
}

void draw(const Element& element, CGSize size, const Environment& environment,
          platform::TextMeasurer& measurer, platform::AssetCatalog& assets,
          platform::Canvas& canvas) {
  draw(layOut(element, size, environment, measurer), canvas, environment, assets);
}

}  // namespace lumenquest::widgets::view
