#pragma once

#include <pango/pangocairo.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/drawing.h"

namespace lumenquest::adapters {

/// In the order of preference; for scripts that these lack, Pango takes what the machine has.
inline constexpr const char* kFontFamilies = "Inter, Noto Sans, sans-serif";

struct Unreferencer {
  void operator()(void* object) const { g_object_unref(object); }
};
using LayoutHandle = std::unique_ptr<PangoLayout, Unreferencer>;

/// The weight's number in OpenType and CSS.
int numberOf(platform::FontWeight weight);

/// Pango's units, 1024 a point, as points.
double pointsOf(int pangoUnits);

/// A text in lines: the one setting behind measuring and every canvas.
class TextSetting {
 public:
  struct Line {
    /// What is shown, in logical order, with its ellipsis and without the space at which it was
    /// broken.
    std::string text;
    /// Points, from the box's top left.
    double x = 0.0;
    double baseline = 0.0;
    double width = 0.0;
  };

  /// `width` in points, or infinite.
  TextSetting(const std::string& text, const platform::TextStyle& style, double width);

  platform::TextMetrics metrics() const;
  std::vector<Line> lines() const;
  /// Draws the lines with the source of `context`, their box's top left at its origin.
  void draw(cairo_t* context) const;

 private:
  /// Pango limits the lines of each paragraph, we those of the whole text: one layout a paragraph.
  struct Paragraph {
    LayoutHandle layout;
    /// Pango units.
    int top = 0;
  };

  std::vector<Paragraph> paragraphs_;
  bool lacksParagraphs_ = false;
};

}  // namespace lumenquest::adapters
