#include "adapters/cairo_canvas.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <limits>
#include <list>
#include <stdexcept>
#include <vector>

#include "gradients.h"
#include "platform/assertion.h"
#include "png_file.h"
#include "text_setting.h"

namespace lumenquest::adapters {

namespace {

using namespace platform;

constexpr double kMostPixels = 8192.0;

struct CairoCloser {
  void operator()(cairo_t* context) const { cairo_destroy(context); }
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
};
using Pattern = std::unique_ptr<cairo_pattern_t, CairoCloser>;
using SurfaceHandle = std::unique_ptr<cairo_surface_t, CairoCloser>;
using Context = std::unique_ptr<cairo_t, CairoCloser>;

void Check(cairo_status_t status) {
  if (status == CAIRO_STATUS_SUCCESS) return;
  throw std::runtime_error(std::string("the picture cannot be drawn: ") +
                           cairo_status_to_string(status));
}

int Pixels(double points, double scale) {
  // 1/3 of a point at scale 3 is one pixel, whatever rounding made of it.
  constexpr double kTolerance = 1e-6;
  const double pixels = std::ceil(points * scale - kTolerance);
  if (!(pixels >= 1.0 && pixels <= kMostPixels)) {
    char message[160];
    std::snprintf(message, sizeof message,
                  "a picture of %g points a side at scale %g: it may have 1 to %g pixels a side",
                  points, scale, kMostPixels);
    throw std::runtime_error(message);
  }
  return static_cast<int>(pixels);
}

cairo_matrix_t MatrixOf(const CGAffineTransform& t) {
  cairo_matrix_t matrix;
  cairo_matrix_init(&matrix, t.a, t.b, t.c, t.d, t.tx, t.ty);
  return matrix;
}

void AddPath(cairo_t* context, const UIBezierPath& path) {
  using Verb = UIBezierPath::Verb;
  cairo_new_path(context);
  for (const auto& [verb, points] : path.segments()) {
    switch (verb) {
      case Verb::move:
        cairo_move_to(context, points[0].x, points[0].y);
        break;
      case Verb::line:
        cairo_line_to(context, points[0].x, points[0].y);
        break;
      case Verb::curve:
        cairo_curve_to(context, points[0].x, points[0].y, points[1].x, points[1].y, points[2].x,
                       points[2].y);
        break;
      case Verb::close:
        cairo_close_path(context);
        break;
    }
  }
  cairo_set_fill_rule(
      context, path.usesEvenOddFillRule ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
}

void SetColor(cairo_t* context, const UIColor& given) {
  const UIColor color = shownColor(given);
  cairo_set_source_rgba(context, color.red, color.green, color.blue, color.alpha);
}

void SetGradient(cairo_t* context, const Gradient& gradient) {
  const CGPoint start = gradient.start;
  const CGPoint end = gradient.end;
  const Pattern pattern(
      gradient.isRadial
          ? cairo_pattern_create_radial(start.x, start.y, 0.0, end.x, end.y, gradient.radius)
          : cairo_pattern_create_linear(start.x, start.y, end.x, end.y));
  for (const GradientStop& stop : gradient.stops) {
    const UIColor color = shownColor(stop.color);
    cairo_pattern_add_color_stop_rgba(pattern.get(), stop.offset, color.red, color.green,
                                      color.blue, color.alpha);
  }
  // Cairo asks for the way back, from the path to the gradient.
  cairo_matrix_t matrix = MatrixOf(gradient.transform);
  Check(cairo_matrix_invert(&matrix));
  cairo_pattern_set_matrix(pattern.get(), &matrix);
  cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_PAD);
  cairo_set_source(context, pattern.get());
}

void SetPaint(cairo_t* context, const Paint& paint) {
  if (const auto* const color = std::get_if<UIColor>(&paint)) {
    SetColor(context, *color);
  } else if (const auto* const gradient = std::get_if<Gradient>(&paint)) {
    if (const auto only = onlyColorOf(*gradient)) {
      SetColor(context, *only);
    } else {
      SetGradient(context, *gradient);
    }
  } else {
    LUMENQUEST_ASSERT(false && "drawImage() resolves the current colour");
  }
}

/// Bytes of the pixels that are there at a time: a picture is drawn in bands.
constexpr int kBandBytes = 128 * 1024;
/// Pixels up to which what is clipped gets pixels of its own at once. They take less than the
/// record of an icon's shapes, and the shapes are drawn once instead of in every band.
constexpr double kLargestLayer = 128.0 * 1024.0;

SurfaceHandle NewPixels(double width, double height) {
  SurfaceHandle pixels(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(width),
                                                  static_cast<int>(height)));
  Check(cairo_surface_status(pixels.get()));
  return pixels;
}

void Prepare(cairo_t* context) {
  Check(cairo_status(context));
  cairo_set_antialias(context, CAIRO_ANTIALIAS_BEST);
  // Pixels by which curves may be cut short; Cairo's own tenth shows in a small disc's edge.
  cairo_set_tolerance(context, 0.03);
  cairo_set_miter_limit(context, kMiterLimit);
}

/// Whole pixels.
struct PixelBox {
  double left = 0.0;
  double top = 0.0;
  double width = 0.0;
  double height = 0.0;
};

/// Corners of a box that grows with the points that it has to hold.
struct Bounds {
  double left = std::numeric_limits<double>::infinity();
  double top = left;
  double right = -left;
  double bottom = -left;

  void Add(CGPoint point, double margin) {
    left = std::min(left, point.x - margin);
    top = std::min(top, point.y - margin);
    right = std::max(right, point.x + margin);
    bottom = std::max(bottom, point.y + margin);
  }
  void Add(const UIBezierPath& path, const CGAffineTransform& transform, double margin) {
    for (const UIBezierPath::Segment& segment : path.segments()) {
      for (const CGPoint& point : segment.points) Add(transform.apply(point), margin);
    }
  }
  /// Control points hold a curve, the miter limit the corners of a stroke.
  void Add(const UIImage& image, const CGAffineTransform& transform) {
    const CGAffineTransform& t = transform;
    const double scale = std::hypot(std::hypot(t.a, t.b), std::hypot(t.c, t.d));
    const UIBezierPath* lastClip = nullptr;
    for (const PictureShape& shape : image.shapes) {
      if (shape.clip != nullptr) {
        if (shape.clip.get() != lastClip) Add(*shape.clip, transform, 0.0);
        lastClip = shape.clip.get();
      } else if (shape.embedded) {
        Add(*shape.embedded->image, shape.embedded->transform.then(transform));
      } else {
        const double reach = shape.strokePaint ? kMiterLimit * shape.stroke.width / 2.0 : 0.0;
        Add(shape.path, transform, reach * scale);
      }
    }
  }
  /// With a pixel around for what is smoothed.
  PixelBox Pixels() const {
    if (!(left <= right)) return {};
    return {std::floor(left) - 1.0, std::floor(top) - 1.0,
            std::ceil(right) - std::floor(left) + 2.0, std::ceil(bottom) - std::floor(top) + 2.0};
  }
};

}  // namespace

/// Finished pixels of pictures that are drawn again and again, as the Moon with its hundreds of
/// shapes: the ones drawn last. For one thread, as the canvases are.
class CairoCanvas::PixelCache {
 public:
  struct Key {
    /// Tells pictures apart without keeping them.
    std::weak_ptr<const UIImage> image;
    UIColor color;
    /// To pixels; its translation is less than one.
    CGAffineTransform transform;

    bool operator==(const Key& other) const {
      return !image.owner_before(other.image) && !other.image.owner_before(image) &&
             color == other.color && transform == other.transform;
    }
  };
  struct Entry {
    Key key;
    PixelBox box;
    SurfaceHandle pixels;

    std::size_t bytes() const { return static_cast<std::size_t>(4.0 * box.width * box.height); }
  };

  static PixelCache& Shared() {
    static PixelCache cache;
    return cache;
  }

  const Entry* Find(const Key& key) {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [&](const Entry& entry) { return entry.key == key; });
    if (found == entries_.end()) return nullptr;
    entries_.splice(entries_.begin(), entries_, found);
    return &entries_.front();
  }

  const Entry& Add(Entry entry) {
    constexpr std::size_t kMostBytes = 1024 * 1024;
    bytes_ += entry.bytes();
    entries_.push_front(std::move(entry));
    while (bytes_ > kMostBytes && entries_.size() > 1) {
      bytes_ -= entries_.back().bytes();
      entries_.pop_back();
    }
    return entries_.front();
  }

 private:
  /// The last used one first.
  std::list<Entry> entries_;
  std::size_t bytes_ = 0;
};

/// What is drawn is recorded, in pixels; the pixels themselves come band by band when the file is
/// written, so that no memory holds them all.
struct CairoCanvas::Surface {
  /// Of a save().
  struct State {
    /// The transform leaves nothing to see. Cairo takes no such transform.
    bool isCollapsed = false;
    int clips = 0;
  };

  /// What is drawn until its clip ends.
  struct Layer {
    /// Null: a group of the context below.
    Context context{};
    double left = 0.0;
    double top = 0.0;
  };

  /// The context to draw on.
  cairo_t* Top() const {
    for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer) {
      if (layer->context) return layer->context.get();
    }
    return context.get();
  }

  double scale = 1.0;
  int width = 0;
  int height = 0;
  SurfaceHandle recording{};
  Context context{};
  std::vector<State> states{State{}};
  std::vector<Layer> layers{};
};

CairoCanvas::CairoCanvas(CGSize size, double scale) : surface_(std::make_unique<Surface>()) {
  if (!(scale >= 1.0 && scale <= 4.0)) {
    throw std::runtime_error("a picture's scale is a number from 1 to 4");
  }
  surface_->scale = scale;
  surface_->width = Pixels(size.width, scale);
  surface_->height = Pixels(size.height, scale);
  const cairo_rectangle_t extents{0.0, 0.0, static_cast<double>(surface_->width),
                                  static_cast<double>(surface_->height)};
  surface_->recording.reset(cairo_recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, &extents));
  Check(cairo_surface_status(surface_->recording.get()));
  surface_->context.reset(cairo_create(surface_->recording.get()));
  Prepare(surface_->context.get());
  cairo_scale(surface_->context.get(), scale, scale);
}

CairoCanvas::CairoCanvas(std::unique_ptr<Surface> surface) : surface_(std::move(surface)) {}

CairoCanvas::~CairoCanvas() = default;

bool CairoCanvas::DrawsNothing() const { return surface_->states.back().isCollapsed; }

void CairoCanvas::save() {
  cairo_save(surface_->Top());
  surface_->states.push_back({surface_->states.back().isCollapsed, 0});
}

void CairoCanvas::restore() {
  LUMENQUEST_ASSERT(surface_->states.size() > 1);
  EndClips();
  cairo_restore(surface_->Top());
  surface_->states.pop_back();
}

void CairoCanvas::EndClips() {
  for (int& clips = surface_->states.back().clips; clips > 0; --clips) {
    const Surface::Layer layer = std::move(surface_->layers.back());
    surface_->layers.pop_back();
    cairo_t* const context = surface_->Top();
    if (layer.context) {
      Check(cairo_status(layer.context.get()));
      cairo_set_source_surface(context, cairo_get_target(layer.context.get()), layer.left,
                               layer.top);
      cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_NEAREST);
    } else {
      cairo_pop_group_to_source(context);
    }
    cairo_paint(context);
    cairo_restore(context);
  }
}

void CairoCanvas::concatenate(const CGAffineTransform& t) {
  for (const double value : {t.a, t.b, t.c, t.d, t.tx, t.ty}) {
    LUMENQUEST_ASSERT(std::isfinite(value));
  }
  if (isCollapsing(t)) {
    surface_->states.back().isCollapsed = true;
  } else {
    const cairo_matrix_t matrix = MatrixOf(t);
    cairo_transform(surface_->Top(), &matrix);
  }
}

void CairoCanvas::clip(const UIBezierPath& path) {
  if (DrawsNothing()) return;
  // What is clipped is drawn whole and cut once. To cut each shape takes several times as long, and
  // what stood below would shine through along the edge where shapes cover each other.
  cairo_t* const context = surface_->Top();
  Surface::Layer layer;
  cairo_save(context);
  AddPath(context, path);
  cairo_clip(context);
  cairo_matrix_t matrix;
  cairo_get_matrix(context, &matrix);
  // From here on in the pixels of the surface.
  cairo_identity_matrix(context);
  double right = 0.0, bottom = 0.0;
  cairo_clip_extents(context, &layer.left, &layer.top, &right, &bottom);
  const double width = std::max(1.0, right - layer.left);
  const double height = std::max(1.0, bottom - layer.top);
  if (width * height <= kLargestLayer) {
    const SurfaceHandle pixels = NewPixels(width, height);
    layer.context.reset(cairo_create(pixels.get()));
    Prepare(layer.context.get());
    matrix.x0 -= layer.left;
    matrix.y0 -= layer.top;
    cairo_set_matrix(layer.context.get(), &matrix);
  } else {
    cairo_push_group(context);
    cairo_reset_clip(context);
    cairo_set_matrix(context, &matrix);
  }
  surface_->layers.push_back(std::move(layer));
  ++surface_->states.back().clips;
}

void CairoCanvas::fill(const UIBezierPath& path, const Paint& paint) {
  if (DrawsNothing()) return;
  cairo_t* const context = surface_->Top();
  SetPaint(context, paint);
  AddPath(context, path);
  cairo_fill(context);
}

void CairoCanvas::stroke(const UIBezierPath& path, const Paint& paint, const Stroke& stroke) {
  if (DrawsNothing() || !(stroke.width > 0.0)) return;
  cairo_t* const context = surface_->Top();
  SetPaint(context, paint);
  AddPath(context, path);
  cairo_set_line_width(context, stroke.width);
  cairo_set_line_cap(context,
                     stroke.ends == LineEnds::round ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
  cairo_set_line_join(context,
                      stroke.hasRoundJoins ? CAIRO_LINE_JOIN_ROUND : CAIRO_LINE_JOIN_MITER);
  cairo_stroke(context);
}

void CairoCanvas::drawText(const std::string& text, const TextStyle& style, const UIColor& color,
                           const CGRect& rect) {
  if (DrawsNothing()) return;
  cairo_t* const context = surface_->Top();
  cairo_save(context);
  cairo_translate(context, rect.x, rect.y);
  SetColor(context, color);
  cairo_set_fill_rule(context, CAIRO_FILL_RULE_WINDING);
  cairo_new_path(context);
  TextSetting(text, style, rect.width).draw(context);
  cairo_restore(context);
}

void CairoCanvas::drawEmbedded(const EmbeddedImage& embedded) {
  if (DrawsNothing() || isCollapsing(embedded.transform)) return;
  cairo_t* const context = surface_->Top();
  cairo_matrix_t matrix;
  cairo_get_matrix(context, &matrix);
  CGAffineTransform transform =
      embedded.transform.then({matrix.xx, matrix.yx, matrix.xy, matrix.yy, matrix.x0, matrix.y0});
  // Cairo's own grid, 256 to a pixel, so that one picture fits wherever else it stands.
  constexpr double kGrid = 256.0;
  const double left = std::floor(transform.tx);
  const double top = std::floor(transform.ty);
  transform.tx = std::round((transform.tx - left) * kGrid) / kGrid;
  transform.ty = std::round((transform.ty - top) * kGrid) / kGrid;

  const PixelCache::Key key{embedded.image, embedded.color, transform};
  PixelCache& cache = PixelCache::Shared();
  const PixelCache::Entry* kept = cache.Find(key);
  if (kept == nullptr) {
    Bounds bounds;
    bounds.Add(*embedded.image, transform);
    const PixelBox box = bounds.Pixels();
    if (!(box.width * box.height <= kLargestLayer)) {
      Canvas::drawEmbedded(embedded);
      return;
    }
    SurfaceHandle pixels = NewPixels(box.width, box.height);
    auto surface = std::make_unique<Surface>();
    surface->context.reset(cairo_create(pixels.get()));
    Prepare(surface->context.get());
    cairo_translate(surface->context.get(), -box.left, -box.top);
    CairoCanvas canvas(std::move(surface));
    canvas.concatenate(transform);
    canvas.drawShapes(*embedded.image, embedded.color);
    Check(cairo_status(canvas.surface_->context.get()));
    kept = &cache.Add({key, box, std::move(pixels)});
  }
  cairo_save(context);
  cairo_identity_matrix(context);
  cairo_set_source_surface(context, kept->pixels.get(), left + kept->box.left, top + kept->box.top);
  cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_NEAREST);
  cairo_paint(context);
  cairo_restore(context);
}

void CairoCanvas::forEachRow(const std::function<void(const unsigned char*)>& take) {
  while (surface_->states.size() > 1) restore();
  EndClips();
  Check(cairo_status(surface_->context.get()));
  const int width = surface_->width;
  const int height = surface_->height;
  const int rows = std::clamp(kBandBytes / (4 * width), 1, height);
  const SurfaceHandle band = NewPixels(width, rows);
  for (int top = 0; top < height; top += rows) {
    const Context context(cairo_create(band.get()));
    cairo_set_operator(context.get(), CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(context.get(), surface_->recording.get(), 0.0, -top);
    cairo_paint(context.get());
    Check(cairo_status(context.get()));
    cairo_surface_flush(band.get());
    const unsigned char* row = cairo_image_surface_get_data(band.get());
    for (int y = top; y < std::min(top + rows, height); ++y) {
      take(row);
      row += cairo_image_surface_get_stride(band.get());
    }
  }
}

std::string CairoCanvas::pngBytes() {
  PngFile file(surface_->width, surface_->height, surface_->scale);
  forEachRow([&](const unsigned char* row) { file.addRow(row); });
  return file.finish();
}

}  // namespace lumenquest::adapters
