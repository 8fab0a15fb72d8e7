#include "adapters/cairo_canvas.h"

#include <cairo.h>
#include <zlib.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <new>
#include <stdexcept>
#include <vector>

#include "gradients.h"
#include "platform/assertion.h"
#include "text_setting.h"

namespace lumenquest::adapters {

namespace {

using platform::CGAffineTransform;
using platform::CGPoint;
using platform::CGRect;
using platform::CGSize;
using platform::Gradient;
using platform::GradientStop;
using platform::LineEnds;
using platform::Paint;
using platform::Stroke;
using platform::TextStyle;
using platform::UIBezierPath;
using platform::UIColor;

constexpr double kMostPixels = 8192.0;

struct CairoCloser {
  void operator()(cairo_t* context) const { cairo_destroy(context); }
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
};
using Pattern = std::unique_ptr<cairo_pattern_t, CairoCloser>;

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

void AppendNumber(std::string& bytes, std::uint32_t number) {
  for (const int shift : {24, 16, 8, 0}) bytes += static_cast<char>((number >> shift) & 0xFFu);
}

/// A PNG file's chunk: length, type, data, and the check of the two (ISO/IEC 15948, 5.3).
std::string Chunk(const std::string& type, const std::string& data) {
  std::string chunk;
  AppendNumber(chunk, static_cast<std::uint32_t>(data.size()));
  const std::string checked = type + data;
  chunk += checked;
  AppendNumber(chunk,
               static_cast<std::uint32_t>(crc32(0, reinterpret_cast<const Bytef*>(checked.data()),
                                                static_cast<uInt>(checked.size()))));
  return chunk;
}

/// What Cairo does not write: that colours are sRGB, and how large a pixel is at 96 points an inch.
std::string WithColorSpaceAndSize(const std::string& png, double scale) {
  constexpr std::size_t kSignatureAndHeader = 8 + 25;
  constexpr double kPointsPerMeter = 96.0 / 0.0254;
  const auto perMeter = static_cast<std::uint32_t>(std::lround(kPointsPerMeter * scale));
  std::string physical;
  AppendNumber(physical, perMeter);
  AppendNumber(physical, perMeter);
  physical += '\1';  // the unit is the metre
  const std::string perceptual(1, '\0');
  return png.substr(0, kSignatureAndHeader) + Chunk("sRGB", perceptual) + Chunk("pHYs", physical) +
         png.substr(kSignatureAndHeader);
}

}  // namespace

struct CairoCanvas::Surface {
  double scale = 1.0;
  std::unique_ptr<cairo_surface_t, CairoCloser> surface;
  std::unique_ptr<cairo_t, CairoCloser> context;
  /// For each save(): whether the transform leaves nothing to see. Cairo takes no such transform.
  std::vector<bool> isCollapsed{false};
};

CairoCanvas::CairoCanvas(CGSize size, double scale) : surface_(std::make_unique<Surface>()) {
  if (!(scale >= 1.0 && scale <= 4.0)) {
    throw std::runtime_error("a picture's scale is a number from 1 to 4");
  }
  surface_->scale = scale;
  surface_->surface.reset(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, Pixels(size.width, scale),
                                                     Pixels(size.height, scale)));
  Check(cairo_surface_status(surface_->surface.get()));
  surface_->context.reset(cairo_create(surface_->surface.get()));
  cairo_t* const context = surface_->context.get();
  Check(cairo_status(context));
  cairo_set_antialias(context, CAIRO_ANTIALIAS_BEST);
  // Pixels by which curves may be cut short; Cairo's own tenth shows in a small disc's edge.
  cairo_set_tolerance(context, 0.03);
  cairo_set_miter_limit(context, kMiterLimit);
  cairo_scale(context, scale, scale);
}

CairoCanvas::~CairoCanvas() = default;

bool CairoCanvas::DrawsNothing() const { return surface_->isCollapsed.back(); }

void CairoCanvas::save() {
  cairo_save(surface_->context.get());
  surface_->isCollapsed.push_back(surface_->isCollapsed.back());
}

void CairoCanvas::restore() {
  LUMENQUEST_ASSERT(surface_->isCollapsed.size() > 1);
  cairo_restore(surface_->context.get());
  surface_->isCollapsed.pop_back();
}

void CairoCanvas::concatenate(const CGAffineTransform& t) {
  for (const double value : {t.a, t.b, t.c, t.d, t.tx, t.ty}) {
    LUMENQUEST_ASSERT(std::isfinite(value));
  }
  if (isCollapsing(t)) {
    surface_->isCollapsed.back() = true;
  } else {
    const cairo_matrix_t matrix = MatrixOf(t);
    cairo_transform(surface_->context.get(), &matrix);
  }
}

void CairoCanvas::clip(const UIBezierPath& path) {
  if (DrawsNothing()) return;
  AddPath(surface_->context.get(), path);
  cairo_clip(surface_->context.get());
}

void CairoCanvas::fill(const UIBezierPath& path, const Paint& paint) {
  if (DrawsNothing()) return;
  cairo_t* const context = surface_->context.get();
  SetPaint(context, paint);
  AddPath(context, path);
  cairo_fill(context);
}

void CairoCanvas::stroke(const UIBezierPath& path, const Paint& paint, const Stroke& stroke) {
  if (DrawsNothing() || !(stroke.width > 0.0)) return;
  cairo_t* const context = surface_->context.get();
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
  cairo_t* const context = surface_->context.get();
  cairo_save(context);
  cairo_translate(context, rect.x, rect.y);
  SetColor(context, color);
  cairo_set_fill_rule(context, CAIRO_FILL_RULE_WINDING);
  cairo_new_path(context);
  TextSetting(text, style, rect.width).draw(context);
  cairo_restore(context);
}

std::string CairoCanvas::pngBytes() {
  Check(cairo_status(surface_->context.get()));
  cairo_surface_flush(surface_->surface.get());
  std::string bytes;
  const auto append = [](void* closure, const unsigned char* data,
                         unsigned int length) -> cairo_status_t {
    try {
      static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
      return CAIRO_STATUS_SUCCESS;
    } catch (const std::bad_alloc&) {
      return CAIRO_STATUS_NO_MEMORY;
    }
  };
  Check(cairo_surface_write_to_png_stream(surface_->surface.get(), append, &bytes));
  return WithColorSpaceAndSize(bytes, surface_->scale);
}

}  // namespace lumenquest::adapters
