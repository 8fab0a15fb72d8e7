#include "adapters/svg_pictures.h"

#include <glib.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <map>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "gradients.h"
#include "svg_path.h"

namespace lumenquest::adapters {

namespace {

using platform::CGAffineTransform;
using platform::CGPoint;
using platform::CGRect;
using platform::CurrentColor;
using platform::Gradient;
using platform::GradientStop;
using platform::LineEnds;
using platform::Paint;
using platform::PictureShape;
using platform::Stroke;
using platform::UIBezierPath;
using platform::UIColor;
using platform::UIImage;

/// Deeper nesting is a mistake, or an attack on the stack.
constexpr int kDeepest = 64;

struct Element {
  std::string name;
  int line = 0;
  std::map<std::string, std::string> attributes;
  std::vector<std::unique_ptr<Element>> children;
};

/// A fault at a line; the file's name is put before it outside.
struct Fault {
  int line = 0;
  std::string what;
};

[[noreturn]] void Fail(const Element& element, const std::string& what) {
  throw Fault{element.line, what};
}

std::string Tag(const Element& element) { return "<" + element.name + ">"; }

bool IsOneOf(std::string_view text, std::initializer_list<std::string_view> among) {
  return std::find(among.begin(), among.end(), text) != among.end();
}

// The file as a tree. Exceptions must not pass through the library's frames, which are C.

struct Reading {
  std::unique_ptr<Element> root;
  std::vector<Element*> open;
};

void SetError(GError** error, const std::string& what) {
  g_set_error_literal(error, G_MARKUP_ERROR, G_MARKUP_ERROR_INVALID_CONTENT, what.c_str());
}

bool IsText(const Element& element) { return IsOneOf(element.name, {"title", "desc"}); }

void OnStart(GMarkupParseContext* context, const char* name, const char** names,
             const char** values, gpointer data, GError** error) {
  auto& reading = *static_cast<Reading*>(data);
  if (reading.open.size() >= kDeepest) {
    SetError(error, "elements are nested too deeply: at most " + std::to_string(kDeepest));
    return;
  }
  auto element = std::make_unique<Element>();
  element->name = name;
  g_markup_parse_context_get_position(context, &element->line, nullptr);
  for (; *names != nullptr; ++names, ++values) {
    if (!element->attributes.emplace(*names, *values).second) {
      SetError(error, "<" + element->name + "> has the attribute " + *names + " twice");
      return;
    }
  }
  Element* const added = element.get();
  if (reading.open.empty()) {
    reading.root = std::move(element);
  } else {
    reading.open.back()->children.push_back(std::move(element));
  }
  reading.open.push_back(added);
}

void OnEnd(GMarkupParseContext*, const char*, gpointer data, GError**) {
  static_cast<Reading*>(data)->open.pop_back();
}

void OnText(GMarkupParseContext*, const char* text, gsize length, gpointer data, GError** error) {
  const auto& reading = *static_cast<Reading*>(data);
  const std::string_view view(text, length);
  if (view.find_first_not_of(" \t\r\n") == std::string_view::npos) return;
  if (reading.open.empty() || !IsText(*reading.open.back())) {
    SetError(error, "text belongs into <title> or <desc> only");
  }
}

struct FreeContext {
  void operator()(GMarkupParseContext* context) const { g_markup_parse_context_free(context); }
};
struct FreeError {
  void operator()(GError* error) const { g_error_free(error); }
};

/// The library puts the place before its message: "Error on line 1 char 2: ...".
std::string WithoutPlace(const std::string& message) {
  if (message.rfind("Error on line ", 0) != 0) return message;
  const std::size_t colon = message.find(": ");
  return colon == std::string::npos ? message : message.substr(colon + 2);
}

std::unique_ptr<Element> Parse(std::string_view svg) {
  static constexpr GMarkupParser kParser{OnStart, OnEnd, OnText, nullptr, nullptr};
  Reading reading;
  const std::unique_ptr<GMarkupParseContext, FreeContext> context(
      g_markup_parse_context_new(&kParser, G_MARKUP_DEFAULT_FLAGS, &reading, nullptr));
  GError* error = nullptr;
  if (g_markup_parse_context_parse(context.get(), svg.data(), static_cast<gssize>(svg.size()),
                                   &error) == 0 ||
      g_markup_parse_context_end_parse(context.get(), &error) == 0) {
    const std::unique_ptr<GError, FreeError> owner(error);
    int line = 0;
    g_markup_parse_context_get_position(context.get(), &line, nullptr);
    throw Fault{line, WithoutPlace(error->message)};
  }
  return std::move(reading.root);
}

// Values of attributes.

const std::string* Find(const Element& element, const char* name) {
  const auto found = element.attributes.find(name);
  return found == element.attributes.end() ? nullptr : &found->second;
}

/// Calls what reads an attribute, and tells where it stands if that fails.
template <typename Read>
auto Reported(const Element& element, const char* name, Read read) {
  try {
    return read();
  } catch (const std::invalid_argument& fault) {
    Fail(element, Tag(element) + " " + name + ": " + fault.what());
  }
}

double NumberIn(const Element& element, const char* name, const std::string& text) {
  return Reported(element, name, [&] {
    SvgScanner scanner(text);
    const double number = scanner.neededNumber();
    if (!scanner.isAtEnd()) {
      throw std::invalid_argument("a number without a unit is needed, not \"" + text + "\"");
    }
    return number;
  });
}

std::optional<double> Number(const Element& element, const char* name) {
  const std::string* const text = Find(element, name);
  return text == nullptr ? std::nullopt : std::optional(NumberIn(element, name, *text));
}

double NumberOr(const Element& element, const char* name, double otherwise) {
  return Number(element, name).value_or(otherwise);
}

double NeededNumber(const Element& element, const char* name) {
  const auto number = Number(element, name);
  if (!number) Fail(element, Tag(element) + " needs " + name);
  return *number;
}

double NeededPositive(const Element& element, const char* name) {
  const double number = NeededNumber(element, name);
  if (!(number > 0.0)) Fail(element, Tag(element) + " " + name + " must be above 0");
  return number;
}

double Fraction(const Element& element, const char* name) {
  const double number = NumberOr(element, name, 1.0);
  if (!(number >= 0.0 && number <= 1.0)) {
    Fail(element, Tag(element) + " " + name + " must be from 0 to 1");
  }
  return number;
}

UIColor Color(const Element& element, const char* name, const std::string& text) {
  const auto color = text.size() == 9 ? std::nullopt : colorFromHex(text);
  if (!color) Fail(element, Tag(element) + " " + name + " must be #rrggbb, not \"" + text + "\"");
  return *color;
}

bool Choice(const Element& element, const char* name, const char* no, const char* yes,
            bool inherited) {
  const std::string* const text = Find(element, name);
  if (text == nullptr) return inherited;
  if (*text != no && *text != yes) {
    Fail(element,
         Tag(element) + " " + name + " must be " + no + " or " + yes + ", not \"" + *text + "\"");
  }
  return *text == yes;
}

/// The name in "url(#name)".
std::optional<std::string> Reference(const std::string& text) {
  if (text.size() < 7 || text.rfind("url(#", 0) != 0 || text.back() != ')') return std::nullopt;
  return text.substr(5, text.size() - 6);
}

CGAffineTransform TransformIn(const Element& element, const char* name) {
  const std::string* const text = Find(element, name);
  if (text == nullptr) return {};
  return Reported(element, name, [&] { return svgTransform(*text); });
}

UIColor Faded(const UIColor& color, double opacity) {
  return color.withAlpha(color.alpha * opacity);
}

void CheckAttributes(const Element& element, std::initializer_list<std::string_view> known) {
  for (const auto& [name, value] : element.attributes) {
    if (!IsOneOf(name, known)) {
      Fail(element, Tag(element) + " has an attribute that our pictures do not know: " + name);
    }
  }
}

/// For elements that are drawn.
void CheckPresented(const Element& element, std::initializer_list<std::string_view> known) {
  for (const auto& [name, value] : element.attributes) {
    if (!IsOneOf(name, known) &&
        !IsOneOf(name, {"fill", "fill-opacity", "fill-rule", "opacity", "transform", "clip-path",
                        "stroke", "stroke-opacity", "stroke-width", "stroke-linecap",
                        "stroke-linejoin", "id"})) {
      Fail(element, Tag(element) + " has an attribute that our pictures do not know: " + name);
    }
  }
}

bool IsShape(const Element& element) {
  return IsOneOf(element.name, {"path", "circle", "ellipse", "rect"});
}

bool IsGradient(const Element& element) {
  return IsOneOf(element.name, {"linearGradient", "radialGradient"});
}

/// The outline of a shape, in its own coordinates.
UIBezierPath Outline(const Element& e) {
  if (e.name == "path") {
    const std::string* const data = Find(e, "d");
    if (data == nullptr) Fail(e, "<path> needs d");
    return Reported(e, "d", [&] { return svgPath(*data); });
  }
  if (e.name == "rect") {
    const CGRect rect{NumberOr(e, "x", 0.0), NumberOr(e, "y", 0.0), NeededPositive(e, "width"),
                      NeededPositive(e, "height")};
    const double radius = NumberOr(e, "rx", 0.0);
    if (!(radius >= 0.0 && radius <= std::min(rect.width, rect.height) / 2.0)) {
      Fail(e, "<rect> rx must be from 0 to half the shorter side");
    }
    return UIBezierPath::roundedRect(rect, radius);
  }
  const bool isCircle = e.name == "circle";
  const double rx = NeededPositive(e, isCircle ? "r" : "rx");
  const double ry = isCircle ? rx : NeededPositive(e, "ry");
  return UIBezierPath::ellipse(
      {NumberOr(e, "cx", 0.0) - rx, NumberOr(e, "cy", 0.0) - ry, 2.0 * rx, 2.0 * ry});
}

void CheckShape(const Element& element) {
  if (element.name == "path") CheckPresented(element, {"d"});
  if (element.name == "circle") CheckPresented(element, {"cx", "cy", "r"});
  if (element.name == "ellipse") CheckPresented(element, {"cx", "cy", "rx", "ry"});
  if (element.name == "rect") {
    CheckPresented(element, {"x", "y", "width", "height", "rx"});
  }
  if (!std::all_of(element.children.begin(), element.children.end(),
                   [](const auto& child) { return IsText(*child); })) {
    Fail(element, Tag(element) + " holds nothing but a title");
  }
}

/// What an element hands on to those inside.
struct Style {
  std::string fill = "#000000";
  double fillOpacity = 1.0;
  bool hasEvenOddFill = false;
  std::string stroke = "none";
  double strokeOpacity = 1.0;
  Stroke line{};
  /// Of the element and all around it.
  double opacity = 1.0;
  /// To the picture's coordinates.
  CGAffineTransform transform{};
  std::shared_ptr<const UIBezierPath> clip{};
};

class PictureReader {
 public:
  UIImage read(const Element& root) {
    if (root.name != "svg") Fail(root, "the outermost element must be <svg>, not " + Tag(root));
    CheckPresented(root, {"xmlns", "viewBox", "width", "height"});
    const std::string* const space = Find(root, "xmlns");
    if (space == nullptr || *space != "http://www.w3.org/2000/svg") {
      Fail(root, "<svg> needs xmlns=\"http://www.w3.org/2000/svg\"");
    }
    ReadSize(root);
    FindDefinitions(root, false);
    Draw(root, {});
    return std::move(image_);
  }

 private:
  void ReadSize(const Element& root) {
    const std::string* const box = Find(root, "viewBox");
    if (box == nullptr) Fail(root, "<svg> needs viewBox=\"0 0 width height\"");
    Reported(root, "viewBox", [&] {
      SvgScanner scanner(*box);
      const double x = scanner.neededNumber();
      const double y = scanner.neededNumber();
      image_.size = {scanner.neededNumber(), scanner.neededNumber()};
      if (x != 0.0 || y != 0.0 || !(image_.size.width > 0.0) || !(image_.size.height > 0.0) ||
          !scanner.isAtEnd()) {
        throw std::invalid_argument("\"0 0 width height\" is needed, not \"" + *box + "\"");
      }
      return true;
    });
    if (NumberOr(root, "width", image_.size.width) != image_.size.width ||
        NumberOr(root, "height", image_.size.height) != image_.size.height) {
      Fail(root, "<svg> width and height must be those of the viewBox");
    }
  }

  /// Gradients and clip paths may stand after what uses them.
  void FindDefinitions(const Element& element, bool isInDefinitions) {
    for (const auto& child : element.children) {
      const bool isDefinition = IsGradient(*child) || child->name == "clipPath";
      if (isDefinition && !isInDefinitions) Fail(*child, Tag(*child) + " belongs into <defs>");
      if (const std::string* const id = Find(*child, "id")) {
        if (!definitions_.emplace(*id, child.get()).second) {
          Fail(*child, "the id \"" + *id + "\" stands twice");
        }
      }
      if (child->name == "defs") {
        CheckAttributes(*child, {"id"});
        FindDefinitions(*child, true);
      } else if (isDefinition) {
        // Whether it is used or not, it has to be right.
        if (IsGradient(*child)) {
          ReadGradient(*child);
        } else {
          ReadClip(*child);
        }
      } else if (isInDefinitions && !IsText(*child)) {
        Fail(*child, Tag(*child) + " is no gradient or clipPath, as <defs> may hold");
      } else {
        FindDefinitions(*child, false);
      }
    }
  }

  const Element& Definition(const Element& user, const std::string& id) const {
    const auto found = definitions_.find(id);
    if (found == definitions_.end()) Fail(user, Tag(user) + " refers to #" + id + ", not there");
    return *found->second;
  }

  static std::vector<GradientStop> ReadStops(const Element& element) {
    std::vector<GradientStop> stops;
    for (const auto& child : element.children) {
      if (IsText(*child)) continue;
      if (child->name != "stop") Fail(*child, Tag(*child) + " is no stop of a gradient");
      CheckAttributes(*child, {"offset", "stop-color", "stop-opacity"});
      const std::string* const text = Find(*child, "offset");
      if (text == nullptr) Fail(*child, "<stop> needs offset");
      const bool isPercentage = !text->empty() && text->back() == '%';
      const double number =
          NumberIn(*child, "offset", text->substr(0, text->size() - (isPercentage ? 1 : 0)));
      const double offset = isPercentage ? number / 100.0 : number;
      if (!(offset >= (stops.empty() ? 0.0 : stops.back().offset) && offset <= 1.0)) {
        Fail(*child, "<stop> offset must be from 0 to 1, and not before that of the stop before");
      }
      const std::string* const color = Find(*child, "stop-color");
      if (color == nullptr) Fail(*child, "<stop> needs stop-color");
      stops.push_back(
          {offset, Faded(Color(*child, "stop-color", *color), Fraction(*child, "stop-opacity"))});
    }
    if (stops.empty()) Fail(element, Tag(element) + " needs a <stop>");
    return stops;
  }

  static Gradient ReadGradient(const Element& e) {
    const std::string* const units = Find(e, "gradientUnits");
    if (units == nullptr || *units != "userSpaceOnUse") {
      Fail(e, Tag(e) + " needs gradientUnits=\"userSpaceOnUse\"");
    }
    Gradient gradient;
    gradient.isRadial = e.name == "radialGradient";
    if (gradient.isRadial) {
      CheckAttributes(e, {"id", "gradientUnits", "gradientTransform", "cx", "cy", "r", "fx", "fy"});
      gradient.end = {NeededNumber(e, "cx"), NeededNumber(e, "cy")};
      gradient.radius = NeededPositive(e, "r");
      gradient.start = {NumberOr(e, "fx", gradient.end.x), NumberOr(e, "fy", gradient.end.y)};
      if (!(std::hypot(gradient.start.x - gradient.end.x, gradient.start.y - gradient.end.y) <
            gradient.radius)) {
        Fail(e, "<radialGradient> fx and fy must lie within the circle");
      }
    } else {
      CheckAttributes(e, {"id", "gradientUnits", "gradientTransform", "x1", "y1", "x2", "y2"});
      gradient.start = {NeededNumber(e, "x1"), NeededNumber(e, "y1")};
      gradient.end = {NeededNumber(e, "x2"), NeededNumber(e, "y2")};
    }
    gradient.transform = TransformIn(e, "gradientTransform");
    gradient.stops = ReadStops(e);
    return gradient;
  }

  static UIBezierPath ReadClip(const Element& e) {
    CheckAttributes(e, {"id"});
    const Element* shape = nullptr;
    for (const auto& child : e.children) {
      if (IsText(*child)) continue;
      if (shape != nullptr || !IsShape(*child)) Fail(*child, "<clipPath> holds one shape");
      shape = child.get();
    }
    if (shape == nullptr) Fail(e, "<clipPath> needs a shape");
    CheckAttributes(*shape, {"d", "cx", "cy", "r", "rx", "ry", "x", "y", "width", "height", "id",
                             "transform", "clip-rule"});
    UIBezierPath path = Outline(*shape).transformed(TransformIn(*shape, "transform"));
    path.usesEvenOddFillRule = Choice(*shape, "clip-rule", "nonzero", "evenodd", false);
    return path;
  }

  Style Inherited(const Element& e, Style style) const {
    if (const std::string* const fill = Find(e, "fill")) style.fill = *fill;
    if (const std::string* const stroke = Find(e, "stroke")) style.stroke = *stroke;
    if (Find(e, "fill-opacity") != nullptr) style.fillOpacity = Fraction(e, "fill-opacity");
    if (Find(e, "stroke-opacity") != nullptr) style.strokeOpacity = Fraction(e, "stroke-opacity");
    style.opacity *= Fraction(e, "opacity");
    style.hasEvenOddFill = Choice(e, "fill-rule", "nonzero", "evenodd", style.hasEvenOddFill);
    style.line.ends =
        Choice(e, "stroke-linecap", "butt", "round", style.line.ends == LineEnds::round)
            ? LineEnds::round
            : LineEnds::butt;
    style.line.hasRoundJoins =
        Choice(e, "stroke-linejoin", "miter", "round", style.line.hasRoundJoins);
    style.line.width = NumberOr(e, "stroke-width", style.line.width);
    if (style.line.width < 0.0) Fail(e, Tag(e) + " stroke-width must not be below 0");
    style.transform = TransformIn(e, "transform").then(style.transform);
    if (isCollapsing(style.transform)) Fail(e, Tag(e) + " transform leaves nothing to see");

    const std::string* const clip = Find(e, "clip-path");
    if (clip != nullptr && *clip != "none") {
      const auto id = Reference(*clip);
      if (!id) Fail(e, Tag(e) + " clip-path must be url(#id), not \"" + *clip + "\"");
      const Element& definition = Definition(e, *id);
      if (definition.name != "clipPath") Fail(e, "#" + *id + " is no clipPath");
      if (style.clip != nullptr) Fail(e, Tag(e) + " is clipped already by what it stands in");
      style.clip =
          std::make_shared<const UIBezierPath>(Placed(e, ReadClip(definition), style.transform));
    }
    return style;
  }

  static UIBezierPath Placed(const Element& element, const UIBezierPath& path,
                             const CGAffineTransform& transform) {
    UIBezierPath placed = path.transformed(transform);
    constexpr double kLargest = 1.0e6;
    for (const auto& segment : placed.segments()) {
      for (const CGPoint& point : segment.points) {
        if (!(std::fabs(point.x) <= kLargest && std::fabs(point.y) <= kLargest)) {
          Fail(element, Tag(element) + " is transformed out of every picture");
        }
      }
    }
    return placed;
  }

  std::optional<Paint> ReadPaint(const Element& element, const char* name, const std::string& text,
                                 double opacity, const Style& style) const {
    if (text == "none") return std::nullopt;
    if (text == "currentColor") return CurrentColor{opacity};
    if (const auto id = Reference(text)) {
      const Element& definition = Definition(element, *id);
      if (!IsGradient(definition)) Fail(element, "#" + *id + " is no gradient");
      Gradient gradient = ReadGradient(definition);
      gradient.transform = gradient.transform.then(style.transform);
      for (GradientStop& stop : gradient.stops) stop.color = Faded(stop.color, opacity);
      return gradient;
    }
    if (text.empty() || text.front() != '#') {
      Fail(element, Tag(element) + " " + name +
                        " must be none, #rrggbb, currentColor or url(#id), not \"" + text + "\"");
    }
    return Faded(Color(element, name, text), opacity);
  }

  void Draw(const Element& element, const Style& inherited) {
    const Style style = Inherited(element, inherited);
    if (IsShape(element)) {
      CheckShape(element);
      DrawShape(element, style);
      return;
    }
    for (const auto& child : element.children) {
      if (child->name == "defs" || IsText(*child)) continue;
      if (child->name == "g") {
        CheckPresented(*child, {});
      } else if (!IsShape(*child)) {
        Fail(*child, Tag(*child) + " is nothing that our pictures are made of");
      }
      Draw(*child, style);
    }
  }

  void DrawShape(const Element& element, const Style& style) {
    const CGAffineTransform& t = style.transform;
    PictureShape shape;
    UIBezierPath path = Outline(element);
    path.usesEvenOddFillRule = style.hasEvenOddFill;
    shape.path = Placed(element, path, t);
    shape.fill = ReadPaint(element, "fill", style.fill, style.fillOpacity * style.opacity, style);
    shape.strokePaint =
        ReadPaint(element, "stroke", style.stroke, style.strokeOpacity * style.opacity, style);
    shape.clip = style.clip;
    if (style.line.width == 0.0) shape.strokePaint.reset();
    if (shape.strokePaint) {
      // A line stays as wide in every direction only where shapes stay similar.
      const double scale = std::hypot(t.a, t.b);
      const double tolerance = 1e-6 * scale;
      const bool isSimilar = std::fabs(std::hypot(t.c, t.d) - scale) <= tolerance &&
                             std::fabs(t.a * t.c + t.b * t.d) <= tolerance * scale;
      if (!isSimilar) Fail(element, Tag(element) + " has a stroke under an uneven transform");
      shape.stroke = style.line;
      shape.stroke.width *= scale;
    }
    if (shape.fill || shape.strokePaint) image_.shapes.push_back(std::move(shape));
  }

  UIImage image_;
  std::map<std::string, const Element*> definitions_;
};

}  // namespace

UIImage readSvgPicture(std::string_view svg, const std::string& file) {
  try {
    const std::unique_ptr<Element> root = Parse(svg);
    return PictureReader().read(*root);
  } catch (const Fault& fault) {
    throw std::runtime_error(file + ":" + std::to_string(fault.line) + ": " + fault.what);
  }
}

std::optional<UIColor> colorFromHex(std::string_view text) {
  if (text.empty() || text.front() != '#') return std::nullopt;
  text.remove_prefix(1);
  std::string digits;
  for (const char c : text) digits.append(text.size() == 3 ? 2 : 1, c);
  if (digits.size() != 6 && digits.size() != 8) return std::nullopt;
  if (digits.size() == 6) digits += "ff";
  unsigned long value = 0;
  const char* const end = digits.data() + digits.size();
  const auto result = std::from_chars(digits.data(), end, value, 16);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  const auto component = [&](int shift) {
    return static_cast<double>((value >> shift) & 0xFFu) / 255.0;
  };
  return UIColor{component(24), component(16), component(8), component(0)};
}

}  // namespace lumenquest::adapters
