#include "adapters/svg_canvas.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <utility>

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
using platform::TextAlignment;
using platform::TextStyle;
using platform::UIBezierPath;
using platform::UIColor;

/// Of factors, fractions and definitions.
constexpr int kFineDecimals = 6;

struct FreeText {
  void operator()(char* text) const { g_free(text); }
};

/// Without zeros at the end.
std::string Number(double value, int decimals) {
  LUMENQUEST_ASSERT(std::isfinite(value));
  std::array<char, 400> buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                    std::chars_format::fixed, decimals);
  std::string text(buffer.data(), result.ptr);
  if (text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  return text == "-0" ? "0" : text;
}

/// As content or a quoted attribute.
std::string Escaped(const std::string& given) {
  const std::unique_ptr<char, FreeText> valid(
      g_utf8_make_valid(given.data(), static_cast<gssize>(given.size())));
  std::string text;
  for (const char* at = valid.get(); *at != '\0'; at = g_utf8_next_char(at)) {
    const gunichar c = g_utf8_get_char(at);
    switch (c) {
      case '&':
        text += "&amp;";
        break;
      case '<':
        text += "&lt;";
        break;
      case '>':
        text += "&gt;";
        break;
      case '"':
        text += "&quot;";
        break;
      case '\'':
        text += "&#39;";
        break;
      case '\t':
      case '\n':
      case '\r':
        // Bare ones would become spaces in an attribute.
        text += "&#" + std::to_string(c) + ";";
        break;
      default:
        if (c >= 0x20 && c != 0xFFFE && c != 0xFFFF) {
          text.append(at, static_cast<std::size_t>(g_utf8_next_char(at) - at));
        }
    }
  }
  return text;
}

std::string Attribute(const char* name, const std::string& value) {
  return std::string(" ") + name + "=\"" + value + "\"";
}

std::string Matrix(const CGAffineTransform& t) {
  std::string text = "matrix(";
  for (const double value : {t.a, t.b, t.c, t.d, t.tx, t.ty}) {
    if (text.back() != '(') text += ' ';
    text += Number(value, kFineDecimals);
  }
  return text + ")";
}

std::string Hex(const UIColor& color) {
  constexpr const char* kDigits = "0123456789abcdef";
  std::string text = "#";
  for (const double component : {color.red, color.green, color.blue}) {
    const auto byte = static_cast<unsigned>(std::lround(component * 255.0));
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15u];
  }
  return text;
}

/// "fill" and "fill-opacity", say.
std::string ColorAttributes(const std::string& name, const std::string& opacityName,
                            const UIColor& given) {
  const UIColor color = shownColor(given);
  std::string text = Attribute(name.c_str(), Hex(color));
  if (color.alpha < 1.0) text += Attribute(opacityName.c_str(), Number(color.alpha, kFineDecimals));
  return text;
}

bool IsPrefix(const std::string& text) {
  const auto isLetter = [](char c) { return ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z'); };
  return !text.empty() && isLetter(text.front()) &&
         std::all_of(text.begin(), text.end(), [&](char c) {
           return isLetter(c) || ('0' <= c && c <= '9') || c == '-' || c == '_';
         });
}

/// Where a viewer must leave spaces as they are.
bool HasSpacesToKeep(const std::string& text) {
  return text.front() == ' ' || text.back() == ' ' || text.find("  ") != std::string::npos;
}

}  // namespace

SvgCanvas::SvgCanvas(CGSize size, std::string idPrefix)
    : size_(size), idPrefix_(std::move(idPrefix)) {
  if (!IsPrefix(idPrefix_)) {
    throw std::runtime_error("\"" + idPrefix_ +
                             "\" is no prefix of ids: a letter, then letters, digits, - and _");
  }
  if (!(std::isfinite(size.width) && size.width > 0.0 && std::isfinite(size.height) &&
        size.height > 0.0)) {
    throw std::runtime_error("a picture's width and height must be above 0");
  }
}

void SvgCanvas::Push(Kind kind, std::string tag) {
  const double scale = open_.empty() ? 1.0 : open_.back().scale;
  open_.push_back({kind, std::move(tag), {}, false, scale});
}

void SvgCanvas::Pop() {
  const Open& last = open_.back();
  if (last.isWritten && last.kind != Kind::save) body_ += last.kind == Kind::link ? "</a>" : "</g>";
  open_.pop_back();
}

void SvgCanvas::End(Kind kind) {
  LUMENQUEST_ASSERT(!open_.empty() && open_.back().kind == kind);
  Pop();
}

void SvgCanvas::WriteOpenTags() {
  for (Open& open : open_) {
    if (open.isWritten) continue;
    open.isWritten = true;
    if (open.kind == Kind::transform) {
      body_ += "<g" + Attribute("transform", Matrix(open.transform)) + ">";
    } else {
      body_ += open.tag;
    }
  }
}

int SvgCanvas::Decimals() const {
  const double scale = open_.empty() ? 1.0 : open_.back().scale;
  constexpr int kDecimals = 3;
  return scale > 1.0 ? kDecimals + static_cast<int>(std::min(3.0, std::ceil(std::log10(scale))))
                     : kDecimals;
}

std::string SvgCanvas::PathData(const UIBezierPath& path) const {
  using Verb = UIBezierPath::Verb;
  const int decimals = Decimals();
  std::string data;
  const auto addPoint = [&](CGPoint point) {
    for (const double value : {point.x, point.y}) {
      const std::string number = Number(value, decimals);
      // A letter or a minus sign separates as well as a space does.
      const char last = data.back();
      if (number.front() != '-' && (('0' <= last && last <= '9') || last == '.')) data += ' ';
      data += number;
    }
  };
  for (const auto& [verb, points] : path.segments()) {
    if (verb == Verb::close) {
      if (!data.empty()) data += 'Z';
      continue;
    }
    // As on the other canvas, a path may begin without a move.
    if (data.empty() && verb == Verb::curve) {
      data += 'M';
      addPoint(points[0]);
    }
    if (verb == Verb::curve) {
      data += 'C';
      for (const CGPoint& point : points) addPoint(point);
    } else {
      data += verb == Verb::move || data.empty() ? 'M' : 'L';
      addPoint(points[0]);
    }
  }
  return data;
}

std::string SvgCanvas::Define(const std::string& name, const std::string& attributes,
                              const std::string& content) {
  const std::string closing = ">" + content + "</" + name + ">";
  const auto [known, isNew] = idOfDefinition_.try_emplace(name + attributes + closing);
  if (isNew) {
    known->second = idPrefix_ + "-" + std::to_string(idOfDefinition_.size());
    definitions_ += "<" + name + Attribute("id", known->second) + attributes + closing;
  }
  return known->second;
}

std::string SvgCanvas::PaintAttributes(const std::string& name, const Paint& paint) {
  const std::string opacityName = name + "-opacity";
  if (const auto* const color = std::get_if<UIColor>(&paint)) {
    return ColorAttributes(name, opacityName, *color);
  }
  const auto* const gradient = std::get_if<Gradient>(&paint);
  LUMENQUEST_ASSERT(gradient != nullptr && "drawImage() resolves the current colour");
  if (const auto only = onlyColorOf(*gradient)) return ColorAttributes(name, opacityName, *only);

  std::string stops;
  for (const GradientStop& stop : gradient->stops) {
    stops += "<stop" + Attribute("offset", Number(stop.offset, kFineDecimals)) +
             ColorAttributes("stop-color", "stop-opacity", stop.color) + "/>";
  }
  std::string attributes = Attribute("gradientUnits", "userSpaceOnUse");
  const auto add = [&](const char* attribute, double value) {
    attributes += Attribute(attribute, Number(value, kFineDecimals));
  };
  if (gradient->isRadial) {
    add("cx", gradient->end.x);
    add("cy", gradient->end.y);
    add("r", gradient->radius);
    if (!(gradient->start == gradient->end)) {
      add("fx", gradient->start.x);
      add("fy", gradient->start.y);
    }
  } else {
    add("x1", gradient->start.x);
    add("y1", gradient->start.y);
    add("x2", gradient->end.x);
    add("y2", gradient->end.y);
  }
  if (!(gradient->transform == CGAffineTransform{})) {
    attributes += Attribute("gradientTransform", Matrix(gradient->transform));
  }
  const std::string id =
      Define(gradient->isRadial ? "radialGradient" : "linearGradient", attributes, stops);
  return Attribute(name.c_str(), "url(#" + id + ")");
}

void SvgCanvas::save() { Push(Kind::save, ""); }

void SvgCanvas::restore() {
  const auto isBetween = [](Kind kind) { return kind == Kind::transform || kind == Kind::clip; };
  while (!open_.empty() && isBetween(open_.back().kind)) Pop();
  End(Kind::save);
}

void SvgCanvas::concatenate(const CGAffineTransform& transform) {
  if (open_.empty() || open_.back().kind != Kind::transform || open_.back().isWritten) {
    Push(Kind::transform, "");
  }
  Open& open = open_.back();
  open.transform = transform.then(open.transform);
  open.scale *= std::sqrt(std::fabs(transform.a * transform.d - transform.b * transform.c));
}

void SvgCanvas::clip(const UIBezierPath& path) {
  const std::string rule = path.usesEvenOddFillRule ? Attribute("clip-rule", "evenodd") : "";
  const std::string id =
      Define("clipPath", "", "<path" + Attribute("d", PathData(path)) + rule + "/>");
  Push(Kind::clip, "<g" + Attribute("clip-path", "url(#" + id + ")") + ">");
}

void SvgCanvas::fill(const UIBezierPath& path, const Paint& paint) {
  const std::string data = PathData(path);
  if (data.empty()) return;
  WriteOpenTags();
  body_ += "<path" + Attribute("d", data) + PaintAttributes("fill", paint);
  if (path.usesEvenOddFillRule) body_ += Attribute("fill-rule", "evenodd");
  body_ += "/>";
}

void SvgCanvas::stroke(const UIBezierPath& path, const Paint& paint, const Stroke& stroke) {
  const std::string data = PathData(path);
  if (data.empty() || !(stroke.width > 0.0)) return;
  WriteOpenTags();
  body_ += "<path" + Attribute("d", data) + Attribute("fill", "none") +
           PaintAttributes("stroke", paint) +
           Attribute("stroke-width", Number(stroke.width, Decimals()));
  if (stroke.ends == LineEnds::round) body_ += Attribute("stroke-linecap", "round");
  if (stroke.hasRoundJoins) body_ += Attribute("stroke-linejoin", "round");
  body_ += "/>";
}

void SvgCanvas::drawText(const std::string& text, const TextStyle& style, const UIColor& color,
                         const CGRect& rect) {
  const int decimals = Decimals();
  std::string font = Attribute("font-size", Number(style.size, decimals)) +
                     Attribute("font-weight", std::to_string(numberOf(style.weight))) +
                     ColorAttributes("fill", "fill-opacity", color);
  // An attribute, as `style` is what a page's content security policy may forbid.
  if (style.hasMonospacedDigits) font += Attribute("font-variant", "tabular-nums");
  if (style.isRightToLeft) font += Attribute("direction", "rtl");

  for (const TextSetting::Line& line : TextSetting(text, style, rect.width).lines()) {
    if (line.text.empty() || !(line.width > 0.0)) continue;
    WriteOpenTags();
    // Held where the alignment holds it, in case that a viewer does not stretch texts.
    const bool isLeft = (style.alignment == TextAlignment::leading) != style.isRightToLeft;
    double x = rect.x + line.x + (isLeft ? 0.0 : line.width);
    std::string anchor;
    if (style.alignment == TextAlignment::center) {
      x = rect.x + line.x + line.width / 2.0;
      anchor = Attribute("text-anchor", "middle");
    } else if (style.alignment == TextAlignment::trailing) {
      anchor = Attribute("text-anchor", "end");
    }
    body_ += "<text" + Attribute("x", Number(x, decimals)) +
             Attribute("y", Number(rect.y + line.baseline, decimals)) + anchor + font +
             Attribute("textLength", Number(line.width, decimals)) +
             Attribute("lengthAdjust", "spacingAndGlyphs");
    if (HasSpacesToKeep(line.text)) body_ += Attribute("xml:space", "preserve");
    body_ += ">" + Escaped(line.text) + "</text>";
  }
}

void SvgCanvas::beginLink(const std::string& url) {
  LUMENQUEST_ASSERT(std::none_of(open_.begin(), open_.end(),
                                 [](const Open& open) { return open.kind == Kind::link; }));
  hasParts_ = true;
  Push(Kind::link, "<a" + Attribute("href", Escaped(url)) + ">");
}

void SvgCanvas::endLink() { End(Kind::link); }

void SvgCanvas::beginLabel(const std::string& label) {
  hasParts_ = true;
  Push(Kind::label,
       "<g" + Attribute("role", "img") + Attribute("aria-label", Escaped(label)) + ">");
}

void SvgCanvas::endLabel() { End(Kind::label); }

std::string SvgCanvas::document(const std::string& title, const std::string& description) const {
  std::string end;
  for (auto open = open_.rbegin(); open != open_.rend(); ++open) {
    LUMENQUEST_ASSERT(open->kind == Kind::transform || open->kind == Kind::clip);
    if (open->isWritten) end += "</g>";
  }
  const std::string width = Number(size_.width, kFineDecimals);
  const std::string height = Number(size_.height, kFineDecimals);
  const std::string titleId = idPrefix_ + "-title";
  const std::string descriptionId = idPrefix_ + "-desc";
  std::string text = "<svg" + Attribute("xmlns", "http://www.w3.org/2000/svg") +
                     Attribute("width", width) + Attribute("height", height) +
                     Attribute("viewBox", "0 0 " + width + " " + height);
  // Those who listen to an image are told of nothing inside.
  text += Attribute("role", hasParts_ ? "group" : "img") + Attribute("aria-labelledby", titleId) +
          Attribute("aria-describedby", descriptionId) + Attribute("font-family", kFontFamilies) +
          ">";
  text += "<title" + Attribute("id", titleId) + ">" + Escaped(title) + "</title>";
  text += "<desc" + Attribute("id", descriptionId) + ">" + Escaped(description) + "</desc>";
  if (!definitions_.empty()) text += "<defs>" + definitions_ + "</defs>";
  return text + body_ + end + "</svg>";
}

}  // namespace lumenquest::adapters
