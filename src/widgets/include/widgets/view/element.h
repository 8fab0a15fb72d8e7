#pragma once

#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/drawing.h"
#include "platform/named_color.h"
#include "platform/ui_color.h"

namespace lumenquest::widgets::view {

/// A colour by value, or by its name in the asset catalogue.
using Color = std::variant<platform::UIColor, platform::NamedColor>;

/// A colour of the asset catalogue.
inline Color named(std::string name, double alpha = 1.0) {
  return platform::NamedColor{std::move(name), alpha};
}

enum class Axis { horizontal, vertical };
/// Across the axis of a stack, and in a frame; `start` is leading or top.
enum class Alignment { start, center, end };

struct Insets {
  double top = 0.0;
  double leading = 0.0;
  double bottom = 0.0;
  double trailing = 0.0;
};
inline Insets insets(double all) { return {all, all, all, all}; }
inline Insets insets(double horizontal, double vertical) {
  return {vertical, horizontal, vertical, horizontal};
}

struct Node;

/// A piece of a view: data that is laid out and drawn elsewhere, put together by small functions
/// and by modifiers that are piped behind them:
///     vstack({icon("sunIcon", 31), text(lightType) | font(10) | minScale(0.9)})
class Element {
 public:
  explicit Element(Node node);
  const Node& node() const { return *node_; }

 private:
  std::shared_ptr<const Node> node_;
};
using Elements = std::vector<Element>;

/// A text; lines are broken at `style.lineLimit`.
struct Text {
  std::string text;
  platform::TextStyle style{};
  Color color = named("contentPrimary");
  /// Where the text does not fit, its letters may shrink to this part of their size before words
  /// are left out.
  double minimumScale = 1.0;
  bool isAccented = false;
  /// By a user: a plan's name, a place's title.
  bool isGiven = false;
};

/// A picture of the asset catalogue.
struct Image {
  std::string name;
  platform::CGSize size;
  /// Of a picture that is a mere shape.
  Color color = named("contentPrimary");
  /// Degrees, clockwise.
  double rotation = 0.0;
  /// Turned round where people read from right to left.
  bool isMirrored = false;
  bool isAccented = false;
  /// Of a thin line around a picture that is a mere shape; a host that tints has none.
  std::optional<Color> outline{};
};

/// A picture made for this view.
struct Picture {
  std::shared_ptr<const platform::UIImage> image;
  platform::CGSize size;
};

/// A rectangle, an ellipse at the largest radius, that takes all the room it is offered.
struct Shape {
  double cornerRadius = 0.0;
  Color fill = named("contentPrimary");
  bool isAccented = false;
};

/// Elements beside or below each other.
struct Stack {
  Axis axis = Axis::vertical;
  double spacing = 0.0;
  Alignment alignment = Alignment::center;
  Elements children;
};

/// Elements on top of each other, the last one in front.
struct DepthStack {
  Elements children;
};

/// The first of several forms that fits along an axis, else the last. Across, it fits when nothing
/// has to shrink or break; downwards, when it is not too high at the width that there is.
struct Choice {
  Axis axis = Axis::horizontal;
  Elements children;
  /// Where it is given, room of at least this width decides for the first form, whatever fits.
  std::optional<double> leastWidth{};
};

/// Takes what room is left along the stack that holds it.
struct Spacer {
  double minimumLength = 0.0;
};

struct Padding {
  Insets insets;
  Element child;
};

/// A box of its own around an element. Absent: the element's length.
struct Frame {
  std::optional<double> width;
  std::optional<double> height;
  bool fillsWidth = false;
  bool fillsHeight = false;
  Alignment horizontal = Alignment::center;
  Alignment vertical = Alignment::center;
  Element child;
};

struct Background {
  Color fill;
  double cornerRadius = 0.0;
  Element child;
};

/// A tap leads somewhere.
struct Link {
  std::string url;
  Element child;
};

/// What is read out to those who do not see the element, in place of its texts.
struct Label {
  std::string text;
  Element child;
};

struct Node : std::variant<Text, Image, Picture, Shape, Stack, DepthStack, Choice, Spacer, Padding,
                           Frame, Background, Link, Label> {
  using variant::variant;
  const variant& base() const { return *this; }
};

// Elements.

/// Of a text that nobody could read on a widget, over 500 characters, the end is left out.
Element text(std::string text);
Element image(std::string name, double size);
Element picture(platform::UIImage image, double size);
Element shape(Color fill, double cornerRadius = 0.0);
/// Across: centred.
Element hstack(Elements children, double spacing = 0.0, Alignment alignment = Alignment::center);
Element vstack(Elements children, double spacing = 0.0, Alignment alignment = Alignment::center);
Element zstack(Elements children);
Element firstThatFits(Axis axis, Elements forms);
/// One form where there is so much width, another where there is less.
Element fromWidth(double least, Element wide, Element narrow);
Element spacer(double minimumLength = 0.0);
/// Nothing, without extent.
Element nothing();

// Modifiers.

using Modifier = std::function<Element(const Element&)>;
inline Element operator|(const Element& element, const Modifier& modifier) {
  return modifier(element);
}

// Of a text; of anything else they are a programming error.

Modifier font(double size, platform::FontWeight weight = platform::FontWeight::regular);
Modifier lineLimit(int lines);
Modifier minScale(double scale);
Modifier align(platform::TextAlignment alignment);
Modifier monospacedDigits();
/// For a user's words, which a description isolates.
Modifier given();

// Of a text, an image or a shape.

Modifier color(Color color);
/// In the user's accent colour where the host tints widgets.
Modifier accented();

// Of an image.

/// Degrees, clockwise.
Modifier rotated(double degrees);
Modifier mirrored();
/// For a shape in a colour that its ground may swallow.
Modifier outlined(Color color);

// Of anything.

Modifier padding(Insets insets);
Modifier frame(double width, double height);
Modifier frameWidth(double width, Alignment horizontal = Alignment::center);
/// As wide as there is room.
Modifier fillWidth(Alignment horizontal = Alignment::start);
Modifier fillHeight(Alignment vertical = Alignment::start);
Modifier background(Color fill, double cornerRadius = 0.0);
Modifier link(std::string url);
Modifier label(std::string text);

// What a view says, without pixels.

/// Its texts, in order.
std::vector<std::string> textsOf(const Element& element);
/// Where taps lead, from the outside in.
std::vector<std::string> linksOf(const Element& element);
/// The names of its pictures.
std::vector<std::string> imagesOf(const Element& element);
/// Words that others stand beside: their direction, and what marks of it they leave open, ends with
/// them. Line breaks become blanks, as they would end the isolate too.
/// Source: Unicode Standard Annex #9, sections 2.4 and 3.3.
std::string isolated(const std::string& words);
/// For those who do not see it: labels and texts, one after another; `separator` between them.
std::string descriptionOf(const Element& element, const std::string& separator = ". ");

}  // namespace lumenquest::widgets::view
