#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "platform/core_graphics.h"
#include "platform/ui_color.h"

namespace lumenquest::platform {

/// Lines and cubic Bézier curves.
class UIBezierPath {
 public:
  enum class Verb : unsigned char { move, line, curve, close };
  /// For as long as the path is neither changed nor gone.
  struct Segment {
    Verb verb;
    /// The end point last; a curve's two control points before it. None of a close.
    std::span<const CGPoint> points;

    CGPoint end() const { return points.back(); }
  };
  class SegmentIterator {
   public:
    SegmentIterator(const Verb* verb, const CGPoint* points) : verb_(verb), points_(points) {}

    Segment operator*() const { return {*verb_, {points_, pointsOf(*verb_)}}; }
    SegmentIterator& operator++() {
      points_ += pointsOf(*verb_);
      ++verb_;
      return *this;
    }
    bool operator==(const SegmentIterator& other) const { return verb_ == other.verb_; }

   private:
    const Verb* verb_;
    const CGPoint* points_;
  };
  class Segments {
   public:
    explicit Segments(const UIBezierPath& path) : path_(path) {}

    SegmentIterator begin() const { return {path_.verbs_.data(), path_.points_.data()}; }
    SegmentIterator end() const { return {path_.verbs_.data() + size(), nullptr}; }
    std::size_t size() const { return path_.verbs_.size(); }
    bool empty() const { return path_.verbs_.empty(); }
    /// Walks there.
    Segment operator[](std::size_t index) const;

   private:
    const UIBezierPath& path_;
  };

  static UIBezierPath rect(const CGRect& rect);
  /// The radius is at most half the shorter side.
  static UIBezierPath roundedRect(const CGRect& rect, double cornerRadius);
  static UIBezierPath ellipse(const CGRect& in);

  void moveTo(CGPoint point) { Add(Verb::move, {point}); }
  void lineTo(CGPoint point) { Add(Verb::line, {point}); }
  void curveTo(CGPoint control1, CGPoint control2, CGPoint point) {
    Add(Verb::curve, {control1, control2, point});
  }
  void close() { Add(Verb::close, {}); }
  void append(const UIBezierPath& path);
  UIBezierPath transformed(const CGAffineTransform& transform) const;

  Segments segments() const { return Segments(*this); }
  bool operator==(const UIBezierPath&) const = default;

  bool usesEvenOddFillRule = false;

 private:
  static std::size_t pointsOf(Verb verb) {
    return verb == Verb::curve ? 3 : verb == Verb::close ? 0 : 1;
  }
  void Add(Verb verb, std::initializer_list<CGPoint> points);

  // Apart, for most segments of a large picture are lines: a third of the memory.
  std::vector<Verb> verbs_;
  std::vector<CGPoint> points_;
};

struct GradientStop {
  /// 0 to 1, growing.
  double offset = 0.0;
  UIColor color;

  bool operator==(const GradientStop&) const = default;
};

/// Colours between two points, or between a focus and a circle, in the coordinates of the path that
/// is filled; the last colour goes on outside.
struct Gradient {
  bool isRadial = false;
  /// Start of a linear gradient, focus of a radial one.
  CGPoint start;
  /// End of a linear gradient, centre of a radial one.
  CGPoint end;
  double radius = 0.0;
  std::vector<GradientStop> stops;
  /// From the gradient's coordinates to those of the path.
  CGAffineTransform transform{};

  bool operator==(const Gradient&) const = default;
};

/// The colour of whoever draws a picture that is a mere shape.
struct CurrentColor {
  double alpha = 1.0;

  bool operator==(const CurrentColor&) const = default;
};

using Paint = std::variant<UIColor, Gradient, CurrentColor>;

enum class LineEnds { butt, round };

struct Stroke {
  double width = 1.0;
  LineEnds ends = LineEnds::butt;
  bool hasRoundJoins = false;

  bool operator==(const Stroke&) const = default;
};

struct UIImage;

/// A picture as part of another one: not copied, as some have hundreds of shapes.
struct EmbeddedImage {
  std::shared_ptr<const UIImage> image;
  /// To the other picture's coordinates.
  CGAffineTransform transform{};
  /// Of its CurrentColor shapes.
  UIColor color;
};

/// One shape of a picture; fill first, then stroke.
struct PictureShape {
  UIBezierPath path;
  std::optional<Paint> fill{};
  std::optional<Paint> strokePaint{};
  Stroke stroke{};
  /// What lies outside is not drawn. Shared by the shapes of a group.
  std::shared_ptr<const UIBezierPath> clip{};
  /// Drawn instead of a path.
  std::optional<EmbeddedImage> embedded{};
};

/// A picture as its shapes, sharp at any size.
struct UIImage {
  CGSize size;
  std::vector<PictureShape> shapes;
};

enum class FontWeight { regular, medium, semibold, bold };

enum class TextAlignment { leading, center, trailing };

/// How a text is set.
struct TextStyle {
  /// Points.
  double size = 12.0;
  FontWeight weight = FontWeight::regular;
  TextAlignment alignment = TextAlignment::leading;
  /// Lines at most; what does not fit ends in an ellipsis.
  int lineLimit = 1;
  /// Digits of one width, so that times stand below each other.
  bool hasMonospacedDigits = false;
  /// The direction of the paragraph: which side is leading, and the place of neutral characters.
  bool isRightToLeft = false;

  bool operator==(const TextStyle&) const = default;
};

/// A text as it was set.
struct TextMetrics {
  /// Of the lines, as wide as the longest.
  CGSize size;
  /// From the top to the baseline of the first line.
  double baseline = 0.0;
  int lines = 1;
  bool isTruncated = false;
};

/// Sets texts.
class TextMeasurer {
 public:
  virtual ~TextMeasurer() = default;
  /// `width`: where lines are broken and truncated, points; infinite: nowhere but at line breaks of
  /// the text.
  virtual TextMetrics measure(const std::string& text, const TextStyle& style, double width) = 0;
};

/// Something to draw on.
class Canvas {
 public:
  virtual ~Canvas() = default;

  virtual void save() = 0;
  /// Back to the transform and clip of the last save().
  virtual void restore() = 0;
  virtual void concatenate(const CGAffineTransform& transform) = 0;
  virtual void clip(const UIBezierPath& path) = 0;
  /// A CurrentColor paint is a programming error here: drawImage() has resolved it.
  virtual void fill(const UIBezierPath& path, const Paint& paint) = 0;
  virtual void stroke(const UIBezierPath& path, const Paint& paint, const Stroke& stroke) = 0;
  /// Into a box whose width breaks and aligns the lines.
  virtual void drawText(const std::string& text, const TextStyle& style, const UIColor& color,
                        const CGRect& rect) = 0;

  /// What is drawn between these two leads somewhere; only some canvases can keep it.
  virtual void beginLink(const std::string& /*url*/) {}
  virtual void endLink() {}
  /// What is drawn between these two has a name for those who cannot see it; texts within it are
  /// not read out besides.
  virtual void beginLabel(const std::string& /*label*/) {}
  virtual void endLabel() {}

  /// A picture scaled into a box. `color` is that of its CurrentColor shapes.
  void drawImage(const UIImage& image, const CGRect& rect, const UIColor& color);
  /// A picture that others share; a canvas may keep what it made of it.
  virtual void drawEmbedded(const EmbeddedImage& embedded);

 protected:
  /// In the picture's own coordinates.
  void drawShapes(const UIImage& image, const UIColor& color);
};

/// Records what is drawn as a picture; texts are a programming error.
class ImageContext final : public Canvas {
 public:
  explicit ImageContext(CGSize size);
  ~ImageContext() override;

  void save() override;
  void restore() override;
  void concatenate(const CGAffineTransform& transform) override;
  void clip(const UIBezierPath& path) override;
  void fill(const UIBezierPath& path, const Paint& paint) override;
  void stroke(const UIBezierPath& path, const Paint& paint, const Stroke& stroke) override;
  void drawText(const std::string& text, const TextStyle& style, const UIColor& color,
                const CGRect& rect) override;

  /// As drawImage(), but keeps the picture as it is. Not null.
  void embedImage(std::shared_ptr<const UIImage> image, const CGRect& rect, const UIColor& color);

  UIImage image() const { return image_; }

 private:
  struct State {
    CGAffineTransform transform{};
    std::shared_ptr<const UIBezierPath> clip{};
  };

  UIImage image_;
  std::vector<State> states_;
};

enum class ColorScheme { light, dark };

/// The pictures and colours of the application's bundle.
class AssetCatalog {
 public:
  virtual ~AssetCatalog() = default;
  /// Null when there is none of this name.
  virtual std::shared_ptr<const UIImage> imageNamed(const std::string& name) = 0;
  /// Absent when there is none of this name.
  virtual std::optional<UIColor> colorNamed(const std::string& name, ColorScheme scheme) = 0;
};

}  // namespace lumenquest::platform
