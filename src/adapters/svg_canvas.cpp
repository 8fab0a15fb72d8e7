#include "adapters/svg_canvas.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include "adapters/pango_text.h"
#include "gradients.h"
#include "platform/assertion.h"
#include "text_setting.h"

namespace lumenquest::adapters {

namespace {

using namespace platform;

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

/// Writes the commands of a path as short as they can be: relative or absolute, whatever is
/// shorter, without letters that a reader knows, and without blanks that nothing needs. Source:
/// W3C, Scalable Vector Graphics (SVG) 2, section 9.3.
class PathWriter {
 public:
  explicit PathWriter(int decimals) : decimals_(decimals) {}

  void Add(char letter, const CGPoint* points, std::size_t count) {
    CGPoint rounded[3];
    for (std::size_t i = 0; i < count; ++i) rounded[i] = Rounded(points[i]);
    // An edge that is lost in the rounding.
    if (letter == 'L' && rounded[0] == at_) return;
    const std::string absolute = Command(letter, rounded, count, {0.0, 0.0});
    const char small = static_cast<char>(letter - 'A' + 'a');
    const std::string relative = Command(small, rounded, count, at_);
    const bool isRelative = relative.size() < absolute.size();
    data_ += isRelative ? relative : absolute;
    last_ = isRelative ? small : letter;
    at_ = rounded[count - 1];
    if (letter == 'M') start_ = at_;
  }
  void Close() {
    if (data_.empty()) return;
    data_ += 'Z';
    last_ = 'Z';
    at_ = start_;
  }
  bool isEmpty() const { return data_.empty(); }
  const std::string& data() const { return data_; }

 private:
  /// As written, so that relative steps do not add up what rounding took.
  CGPoint Rounded(CGPoint point) const {
    const double grid = std::pow(10.0, decimals_);
    return {std::round(point.x * grid) / grid, std::round(point.y * grid) / grid};
  }

  std::string Command(char letter, const CGPoint* points, std::size_t count, CGPoint from) const {
    std::string text;
    // After a move come lines.
    const bool isKnown =
        last_ == letter || (last_ == 'M' && letter == 'L') || (last_ == 'm' && letter == 'l');
    if (!isKnown || letter == 'M' || letter == 'm') text += letter;
    bool isAfterNumber = text.empty();
    bool hasPoint = isAfterNumber && endsWithFraction();
    for (std::size_t i = 0; i < count; ++i) {
      for (const double value : {points[i].x - from.x, points[i].y - from.y}) {
        std::string number = Number(value, decimals_);
        if (number.starts_with("0.")) number.erase(0, 1);
        if (number.starts_with("-0.")) number.erase(1, 1);
        const bool isApart = number.front() == '-' || (number.front() == '.' && hasPoint);
        if (isAfterNumber && !isApart) text += ' ';
        text += number;
        isAfterNumber = true;
        hasPoint = number.find('.') != std::string::npos;
      }
    }
    return text;
  }

  bool endsWithFraction() const {
    const std::size_t before = data_.find_last_not_of("0123456789");
    return before != std::string::npos && data_[before] == '.';
  }

  int decimals_;
  std::string data_;
  char last_ = 'Z';
  CGPoint at_;
  CGPoint start_;
};

std::string PathData(const UIBezierPath& path, int decimals) {
  using Verb = UIBezierPath::Verb;
  PathWriter writer(decimals);
  for (const auto& [verb, points] : path.segments()) {
    if (verb == Verb::close) {
      writer.Close();
      continue;
    }
    // As on the other canvas, a path may begin without a move.
    if (writer.isEmpty() && verb == Verb::curve) writer.Add('M', points.data(), 1);
    if (verb == Verb::curve) {
      writer.Add('C', points.data(), points.size());
    } else {
      writer.Add(verb == Verb::move || writer.isEmpty() ? 'M' : 'L', points.data(), 1);
    }
  }
  return writer.data();
}

/// The box of a path that may be an ellipse.
std::optional<CGRect> EllipseBox(const UIBezierPath& path) {
  const UIBezierPath::Segments s = path.segments();
  using Verb = UIBezierPath::Verb;
  if (s.size() != 6 || s[0].verb != Verb::move || s[1].verb != Verb::curve ||
      s[2].verb != Verb::curve || s[3].verb != Verb::curve) {
    return std::nullopt;
  }
  const double left = s[3].end().x;
  const double top = s[0].end().y;
  const CGRect box{left, top, s[1].end().x - left, s[2].end().y - top};
  if (!(box.width > 0.0 && box.height > 0.0)) return std::nullopt;
  return box;
}

/// The way back; the transform must not collapse.
CGAffineTransform Inverse(const CGAffineTransform& t) {
  const double determinant = t.a * t.d - t.b * t.c;
  return {t.d / determinant,
          -t.b / determinant,
          -t.c / determinant,
          t.a / determinant,
          (t.c * t.ty - t.d * t.tx) / determinant,
          (t.b * t.tx - t.a * t.ty) / determinant};
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

int SvgCanvas::Decimals(double innerScale) const {
  const double scale = innerScale * (open_.empty() ? 1.0 : open_.back().scale);
  constexpr double kMostRounding = 0.01;
  const double decimals = std::ceil(std::log10(0.5 * scale / kMostRounding));
  return decimals > 0.0 ? static_cast<int>(std::min<double>(kFineDecimals, decimals)) : 0;
}

std::string SvgCanvas::Outline(const UIBezierPath& path, int decimals) {
  const std::string data = PathData(path, decimals);
  if (data.empty()) return "";
  if (const auto box = EllipseBox(path);
      box && data == PathData(UIBezierPath::ellipse(*box), decimals)) {
    const double rx = box->width / 2.0;
    const double ry = box->height / 2.0;
    const auto number = [&](double value) { return Number(value, decimals); };
    const bool isCircle = number(rx) == number(ry);
    std::string text = isCircle ? "<circle" : "<ellipse";
    if (number(box->center().x) != "0") text += Attribute("cx", number(box->center().x));
    if (number(box->center().y) != "0") text += Attribute("cy", number(box->center().y));
    if (isCircle) return text + Attribute("r", number(rx));
    return text + Attribute("rx", number(rx)) + Attribute("ry", number(ry));
  }
  return "<path" + Attribute("d", data);
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

  // Pictures have hundreds of gradients that differ in nothing but their strength.
  double strength = 0.0;
  for (const GradientStop& stop : gradient->stops) {
    strength = std::max(strength, shownColor(stop.color).alpha);
  }
  if (strength == 0.0) strength = 1.0;
  std::string stops;
  for (const GradientStop& stop : gradient->stops) {
    const double alpha = shownColor(stop.color).alpha / strength;
    stops += "<stop" + Attribute("offset", Number(stop.offset, kFineDecimals)) +
             ColorAttributes("stop-color", "stop-opacity", stop.color.withAlpha(alpha)) + "/>";
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
  std::string text = Attribute(name.c_str(), "url(#" + id + ")");
  if (strength < 1.0) text += Attribute(opacityName.c_str(), Number(strength, kFineDecimals));
  return text;
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
  const std::string outline = Outline(path, Decimals());
  const std::string id = Define("clipPath", "", outline.empty() ? "" : outline + rule + "/>");
  Push(Kind::clip, "<g" + Attribute("clip-path", "url(#" + id + ")") + ">");
}

void SvgCanvas::fill(const UIBezierPath& path, const Paint& paint) {
  const auto* const gradient = std::get_if<Gradient>(&paint);
  std::string shape;
  if (gradient != nullptr && !(gradient->transform == CGAffineTransform{}) &&
      !onlyColorOf(*gradient)) {
    // In the gradient's coordinates, where one definition serves all shapes of a kind.
    const CGAffineTransform& t = gradient->transform;
    Gradient own = *gradient;
    own.transform = {};
    const double stretch = std::hypot(std::hypot(t.a, t.b), std::hypot(t.c, t.d));
    shape = Outline(path.transformed(Inverse(t)), Decimals(stretch));
    if (!shape.empty()) shape += Attribute("transform", Matrix(t)) + PaintAttributes("fill", own);
  } else {
    shape = Outline(path, Decimals());
    if (!shape.empty()) shape += PaintAttributes("fill", paint);
  }
  if (shape.empty()) return;
  WriteOpenTags();
  body_ += shape;
  if (path.usesEvenOddFillRule) body_ += Attribute("fill-rule", "evenodd");
  body_ += "/>";
}

void SvgCanvas::stroke(const UIBezierPath& path, const Paint& paint, const Stroke& stroke) {
  const std::string outline = Outline(path, Decimals());
  if (outline.empty() || !(stroke.width > 0.0)) return;
  WriteOpenTags();
  // One more decimal: of a hair line, a hundredth of a point is much.
  body_ += outline + Attribute("fill", "none") + PaintAttributes("stroke", paint) +
           Attribute("stroke-width", Number(stroke.width, Decimals() + 1));
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
  // How words are spoken, broken and shaped. Pages look at the one name, XML's tools at the other.
  if (const std::string language = Escaped(textLanguage()); !language.empty()) {
    text += Attribute("lang", language) + Attribute("xml:lang", language);
  }
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
