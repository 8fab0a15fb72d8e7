#include "adapters/pango_text.h"

#include <hb-ot.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <tuple>

#include "platform/assertion.h"
#include "text_setting.h"

#ifdef LUMENQUEST_SANITIZED
/// Fontconfig keeps the parts of its patterns by offsets, not pointers, so that what it holds looks
/// lost to the sanitizer.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }
#endif

namespace lumenquest::adapters {

namespace {

using platform::FontWeight;
using platform::TextAlignment;
using platform::TextMetrics;
using platform::TextStyle;

constexpr const char* kEllipsis = "\u2026";
/// Points. Wider boxes are as good as infinite, and Pango counts in integers.
constexpr double kWidest = 1.0e6;

struct FreeFontOptions {
  void operator()(cairo_font_options_t* options) const { cairo_font_options_destroy(options); }
};
struct FreeDescription {
  void operator()(PangoFontDescription* font) const { pango_font_description_free(font); }
};
struct FreeAttributes {
  void operator()(PangoAttrList* attributes) const { pango_attr_list_unref(attributes); }
};
struct FreeIterator {
  void operator()(PangoLayoutIter* iterator) const { pango_layout_iter_free(iterator); }
};
using LineIterator = std::unique_ptr<PangoLayoutIter, FreeIterator>;

struct FreeText {
  void operator()(char* text) const { g_free(text); }
};

PangoContext* NewContext(PangoDirection direction) {
  PangoContext* const context = pango_font_map_create_context(pango_cairo_font_map_get_default());
  // Whatever is hinted or rounded to pixels would set a text differently at each scale.
  const std::unique_ptr<cairo_font_options_t, FreeFontOptions> options(cairo_font_options_create());
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  pango_cairo_context_set_font_options(context, options.get());
  pango_context_set_round_glyph_positions(context, FALSE);
  pango_context_set_base_dir(context, direction);
  return context;
}

/// A text, its style and the width that it was offered.
using MeasureKey =
    std::tuple<std::string, double, FontWeight, TextAlignment, int, bool, bool, double>;

/// One a direction for the process: to change a context's direction would set its layouts anew.
/// Made when first needed, as most commands show no fonts.
struct Contexts {
  std::array<PangoContext*, 2> byDirection{};
  std::string language;
  /// In that language.
  std::map<MeasureKey, TextMetrics> measured;
};

Contexts& SharedContexts() {
  static Contexts contexts;
  return contexts;
}

void SetLanguage(PangoContext* context, const std::string& language) {
  pango_context_set_language(context, pango_language_from_string(language.c_str()));
}

PangoContext* ContextFor(bool isRightToLeft) {
  Contexts& contexts = SharedContexts();
  PangoContext*& context = contexts.byDirection[isRightToLeft ? 1 : 0];
  if (context == nullptr) {
    context = NewContext(isRightToLeft ? PANGO_DIRECTION_RTL : PANGO_DIRECTION_LTR);
    if (!contexts.language.empty()) SetLanguage(context, contexts.language);
  }
  return context;
}

/// Characters that no font shows and XML forbids. Bidirectional marks and joiners stay.
bool IsUnshown(gunichar c) {
  return (c < 0x20 && c != '\n') || (c >= 0x7F && c < 0xA0) || (c & 0xFFFE) == 0xFFFE;
}

/// The text's paragraphs, at least one, as whoever draws them may have them. Where there are more
/// than lines, breaks are blanks: a title loses no words to them.
std::vector<std::string> ParagraphsOf(const std::string& text, int lineLimit) {
  const std::unique_ptr<char, FreeText> valid(
      g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
  std::vector<std::string> paragraphs(1);
  for (const char* at = valid.get(); *at != '\0'; at = g_utf8_next_char(at)) {
    const gunichar c = g_utf8_get_char(at);
    if (c == '\r' && at[1] == '\n') continue;
    constexpr gunichar kNextLine = 0x85, kLineSeparator = 0x2028, kParagraphSeparator = 0x2029;
    if (c == '\n' || c == '\r' || c == kNextLine || c == kLineSeparator ||
        c == kParagraphSeparator) {
      paragraphs.emplace_back();
    } else if (c == '\t') {
      paragraphs.back() += ' ';
    } else if (!IsUnshown(c)) {
      paragraphs.back().append(at, static_cast<std::size_t>(g_utf8_next_char(at) - at));
    }
  }
  if (paragraphs.size() <= static_cast<std::size_t>(lineLimit)) return paragraphs;
  std::string whole;
  for (const std::string& paragraph : paragraphs) {
    if (!whole.empty() && !paragraph.empty()) whole += ' ';
    whole += paragraph;
  }
  return {whole};
}

/// Pango units for the width of a layout, -1 for none.
int WidthFor(double width) {
  LUMENQUEST_ASSERT(!std::isnan(width));
  if (width > kWidest) return -1;
  return static_cast<int>(std::lround(std::max(0.0, width) * PANGO_SCALE));
}

LayoutHandle NewLayout(const TextStyle& style, int width) {
  LUMENQUEST_ASSERT(std::isfinite(style.size) && style.size > 0.0);
  LayoutHandle layout(pango_layout_new(ContextFor(style.isRightToLeft)));

  const std::unique_ptr<PangoFontDescription, FreeDescription> font(pango_font_description_new());
  pango_font_description_set_family_static(font.get(), kFontFamilies);
  pango_font_description_set_absolute_size(font.get(), style.size * PANGO_SCALE);
  pango_font_description_set_weight(font.get(), static_cast<PangoWeight>(numberOf(style.weight)));
  pango_layout_set_font_description(layout.get(), font.get());
  if (style.hasMonospacedDigits) {
    const std::unique_ptr<PangoAttrList, FreeAttributes> attributes(pango_attr_list_new());
    pango_attr_list_insert(attributes.get(), pango_attr_font_features_new("tnum=1"));
    pango_layout_set_attributes(layout.get(), attributes.get());
  }

  pango_layout_set_auto_dir(layout.get(), FALSE);
  pango_layout_set_width(layout.get(), width);
  pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
  pango_layout_set_ellipsize(layout.get(), PANGO_ELLIPSIZE_END);
  const bool isLeft = (style.alignment == TextAlignment::leading) != style.isRightToLeft;
  pango_layout_set_alignment(layout.get(), style.alignment == TextAlignment::center
                                               ? PANGO_ALIGN_CENTER
                                               : (isLeft ? PANGO_ALIGN_LEFT : PANGO_ALIGN_RIGHT));
  return layout;
}

bool IsEllipsis(const PangoItem* item) {
  return (item->analysis.flags & PANGO_ANALYSIS_FLAG_IS_ELLIPSIS) != 0;
}

/// Pango widens an ellipsis until its line fills the box, which would spoil the alignment of lines
/// and their measure.
void Narrow(PangoGlyphString* ellipsis, PangoFont* font) {
  for (int i = 0; i < ellipsis->num_glyphs; ++i) {
    PangoGlyphInfo& info = ellipsis->glyphs[i];
    PangoRectangle extents;
    pango_font_get_glyph_extents(font, info.glyph, nullptr, &extents);
    info.geometry.width = std::min(info.geometry.width, extents.width);
  }
}

void SetText(PangoLayout* layout, const std::string& text) {
  pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
  for (const GSList* line = pango_layout_get_lines(layout); line != nullptr; line = line->next) {
    const GSList* runs = static_cast<const PangoLayoutLine*>(line->data)->runs;
    for (; runs != nullptr; runs = runs->next) {
      const auto* const run = static_cast<const PangoLayoutRun*>(runs->data);
      if (IsEllipsis(run->item)) Narrow(run->glyphs, run->item->analysis.font);
    }
  }
}

PangoRectangle LogicalExtents(PangoLayout* layout) {
  PangoRectangle extents;
  pango_layout_get_extents(layout, nullptr, &extents);
  return extents;
}

/// The bytes of the text that an ellipsis stands for; empty at the line's end when it has none.
struct Hidden {
  int start = 0;
  int end = 0;
};

Hidden HiddenIn(const PangoLayoutLine* line) {
  for (const GSList* run = line->runs; run != nullptr; run = run->next) {
    const PangoItem* const item = static_cast<const PangoLayoutRun*>(run->data)->item;
    if (IsEllipsis(item)) return {item->offset, item->offset + item->length};
  }
  return {line->start_index + line->length, line->start_index + line->length};
}

bool HasColors(PangoFont* font) {
  hb_face_t* const face = hb_font_get_face(pango_font_get_hb_font(font));
  return hb_ot_color_has_png(face) != 0 || hb_ot_color_has_layers(face) != 0 ||
         hb_ot_color_has_svg(face) != 0;
}

/// Cairo puts ready-made glyphs at whole pixels, which spaces small texts unevenly: outlines stand
/// where they belong. Glyphs in colour have none.
void DrawRun(cairo_t* context, const PangoGlyphItem& run) {
  PangoFont* const font = run.item->analysis.font;
  if (HasColors(font)) {
    pango_cairo_show_glyph_string(context, font, run.glyphs);
  } else {
    pango_cairo_glyph_string_path(context, font, run.glyphs);
    cairo_fill(context);
  }
}

}  // namespace

int numberOf(FontWeight weight) {
  switch (weight) {
    case FontWeight::regular:
      return PANGO_WEIGHT_NORMAL;
    case FontWeight::medium:
      return PANGO_WEIGHT_MEDIUM;
    case FontWeight::semibold:
      return PANGO_WEIGHT_SEMIBOLD;
    case FontWeight::bold:
      return PANGO_WEIGHT_BOLD;
  }
  LUMENQUEST_ASSERT(false && "unknown weight");
  return PANGO_WEIGHT_NORMAL;
}

double pointsOf(int pangoUnits) { return static_cast<double>(pangoUnits) / PANGO_SCALE; }

TextSetting::TextSetting(const std::string& text, const TextStyle& style, double width) {
  LUMENQUEST_ASSERT(style.lineLimit >= 1);
  int widthUnits = WidthFor(width);
  int linesLeft = style.lineLimit;
  int top = 0;
  for (const std::string& paragraph : ParagraphsOf(text, style.lineLimit)) {
    if (linesLeft == 0) {
      // What is left out is told by an ellipsis, which may itself displace the last words.
      lacksParagraphs_ = true;
      PangoLayout* const last = paragraphs_.back().layout.get();
      const std::string shown = pango_layout_get_text(last);
      const int lines = pango_layout_get_line_count(last);
      if (!pango_layout_is_ellipsized(last)) {
        pango_layout_set_height(last, -lines);
        SetText(last, shown + kEllipsis);
      }
      break;
    }
    LayoutHandle layout = NewLayout(style, widthUnits);
    pango_layout_set_height(layout.get(), -linesLeft);
    SetText(layout.get(), paragraph);
    linesLeft -= std::min(linesLeft, pango_layout_get_line_count(layout.get()));
    const int height = LogicalExtents(layout.get()).height;
    paragraphs_.push_back({std::move(layout), top});
    top += height;
  }
  if (widthUnits >= 0 || paragraphs_.size() < 2) return;

  // Lines that no box aligns are aligned to the longest of them.
  for (const Paragraph& paragraph : paragraphs_) {
    widthUnits = std::max(widthUnits, LogicalExtents(paragraph.layout.get()).width);
  }
  for (const Paragraph& paragraph : paragraphs_) {
    pango_layout_set_width(paragraph.layout.get(), widthUnits);
  }
}

TextMetrics TextSetting::metrics() const {
  TextMetrics metrics;
  metrics.lines = 0;
  metrics.isTruncated = lacksParagraphs_;
  metrics.baseline = pointsOf(pango_layout_get_baseline(paragraphs_.front().layout.get()));
  for (const auto& [layout, top] : paragraphs_) {
    const PangoRectangle extents = LogicalExtents(layout.get());
    metrics.size.width = std::max(metrics.size.width, pointsOf(extents.width));
    metrics.size.height = pointsOf(top + extents.height);
    metrics.lines += pango_layout_get_line_count(layout.get());
    metrics.isTruncated = metrics.isTruncated || pango_layout_is_ellipsized(layout.get()) != 0;
  }
  return metrics;
}

std::vector<TextSetting::Line> TextSetting::lines() const {
  std::vector<Line> lines;
  for (const auto& [layout, top] : paragraphs_) {
    const std::string text = pango_layout_get_text(layout.get());
    const LineIterator iterator(pango_layout_get_iter(layout.get()));
    do {
      const PangoLayoutLine* const line = pango_layout_iter_get_line_readonly(iterator.get());
      PangoRectangle extents;
      pango_layout_iter_get_line_extents(iterator.get(), nullptr, &extents);
      const auto [hiddenStart, hiddenEnd] = HiddenIn(line);
      const int end = line->start_index + line->length;
      const auto part = [&](int from, int to) {
        return text.substr(static_cast<std::size_t>(from),
                           static_cast<std::size_t>(std::max(0, to - from)));
      };
      Line set{part(line->start_index, hiddenStart), pointsOf(extents.x),
               pointsOf(top + pango_layout_iter_get_baseline(iterator.get())),
               pointsOf(extents.width)};
      if (hiddenStart < hiddenEnd) set.text += kEllipsis + part(hiddenEnd, end);
      const bool isLast = static_cast<std::size_t>(end) == text.size();
      if (!isLast && hiddenStart == hiddenEnd) {
        while (!set.text.empty() && set.text.back() == ' ') set.text.pop_back();
      }
      lines.push_back(std::move(set));
    } while (pango_layout_iter_next_line(iterator.get()) != 0);
  }
  return lines;
}

void TextSetting::draw(cairo_t* context) const {
  for (const auto& [layout, top] : paragraphs_) {
    const LineIterator iterator(pango_layout_get_iter(layout.get()));
    do {
      const PangoLayoutRun* const run = pango_layout_iter_get_run_readonly(iterator.get());
      if (run == nullptr) continue;  // the end of a line
      PangoRectangle extents;
      pango_layout_iter_get_run_extents(iterator.get(), nullptr, &extents);
      cairo_move_to(context, pointsOf(extents.x),
                    pointsOf(top + pango_layout_iter_get_run_baseline(iterator.get())));
      DrawRun(context, *run);
    } while (pango_layout_iter_next_run(iterator.get()) != 0);
  }
}

TextMetrics PangoTextMeasurer::measure(const std::string& text, const TextStyle& style,
                                       double width) {
  // Most of a widget's words are those of the one before, and to shape them is most of its layout.
  constexpr std::size_t kMostTexts = 512;
  constexpr std::size_t kLongestText = 200;
  LUMENQUEST_ASSERT(!std::isnan(width) && !std::isnan(style.size));
  if (text.size() > kLongestText) return TextSetting(text, style, width).metrics();
  Contexts& contexts = SharedContexts();
  const MeasureKey key{text,
                       style.size,
                       style.weight,
                       style.alignment,
                       style.lineLimit,
                       style.hasMonospacedDigits,
                       style.isRightToLeft,
                       width};
  const auto known = contexts.measured.find(key);
  if (known != contexts.measured.end()) return known->second;
  const TextMetrics metrics = TextSetting(text, style, width).metrics();
  if (contexts.measured.size() >= kMostTexts) contexts.measured.clear();
  contexts.measured.emplace(key, metrics);
  return metrics;
}

void setTextLanguage(const std::string& language) {
  Contexts& contexts = SharedContexts();
  if (language == contexts.language) return;
  contexts.language = language;
  contexts.measured.clear();
  for (PangoContext* const context : contexts.byDirection) {
    if (context != nullptr) SetLanguage(context, language);
  }
}

std::string textLanguage() { return SharedContexts().language; }

}  // namespace lumenquest::adapters
