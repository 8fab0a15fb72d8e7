#include "widgets/view/element.h"

#include <algorithm>
#include <string_view>

#include "platform/assertion.h"
#include "widgets/view/environment.h"

namespace lumenquest::widgets::view {

namespace {

struct Sizes {
  platform::CGSize usual;
  platform::CGSize least;
};

Sizes SizesOf(WidgetFamily family) {
  switch (family) {
    case WidgetFamily::systemSmall:
      return {{170.0, 170.0}, {141.0, 141.0}};
    case WidgetFamily::systemMedium:
      return {{364.0, 170.0}, {292.0, 141.0}};
    case WidgetFamily::systemLarge:
      break;
  }
  return {{364.0, 382.0}, {292.0, 311.0}};
}

}  // namespace

platform::CGSize sizeOf(WidgetFamily family) { return SizesOf(family).usual; }
platform::CGSize leastSizeOf(WidgetFamily family) { return SizesOf(family).least; }

Element::Element(Node node) : node_(std::make_shared<const Node>(std::move(node))) {}

Element text(std::string text) {
  constexpr int kMostCharacters = 500;
  int characters = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isContinuation = (static_cast<unsigned char>(text[i]) & 0xC0u) == 0x80u;
    if (isContinuation || ++characters <= kMostCharacters) continue;
    text.resize(i);
    text += "…";
    break;
  }
  return Element(Text{std::move(text)});
}

Element image(std::string name, double size) {
  return Element(Image{std::move(name), {size, size}});
}

Element picture(platform::UIImage image, double size) {
  return Element(
      Picture{std::make_shared<const platform::UIImage>(std::move(image)), {size, size}});
}

Element shape(Color fill, double cornerRadius) {
  return Element(Shape{cornerRadius, std::move(fill)});
}

Element hstack(Elements children, double spacing, Alignment alignment) {
  return Element(Stack{Axis::horizontal, spacing, alignment, std::move(children)});
}

Element vstack(Elements children, double spacing, Alignment alignment) {
  return Element(Stack{Axis::vertical, spacing, alignment, std::move(children)});
}

Element zstack(Elements children) { return Element(DepthStack{std::move(children)}); }

Element firstThatFits(Axis axis, Elements forms) { return Element(Choice{axis, std::move(forms)}); }

Element fromWidth(double least, Element wide, Element narrow) {
  return Element(Choice{Axis::horizontal, {std::move(wide), std::move(narrow)}, least});
}

Element spacer(double minimumLength) { return Element(Spacer{minimumLength}); }

Element nothing() { return zstack({}); }

namespace {

/// The element with one of these kinds of its node changed.
template <typename... Kinds, typename Change>
Element Changed(const Element& element, Change change) {
  Node node = element.node();
  const bool isOne = (... || [&] {
    auto* const kind = std::get_if<Kinds>(&node);
    if (kind != nullptr) change(*kind);
    return kind != nullptr;
  }());
  LUMENQUEST_ASSERT(isOne);
  return Element(std::move(node));
}

Modifier OfText(std::function<void(Text&)> change) {
  return [change = std::move(change)](const Element& element) {
    return Changed<Text>(element, change);
  };
}

}  // namespace

Modifier font(double size, platform::FontWeight weight) {
  return OfText([=](Text& text) {
    text.style.size = size;
    text.style.weight = weight;
  });
}

Modifier lineLimit(int lines) {
  return OfText([=](Text& text) { text.style.lineLimit = lines; });
}

Modifier minScale(double scale) {
  return OfText([=](Text& text) { text.minimumScale = scale; });
}

Modifier align(platform::TextAlignment alignment) {
  return OfText([=](Text& text) { text.style.alignment = alignment; });
}

Modifier monospacedDigits() {
  return OfText([](Text& text) { text.style.hasMonospacedDigits = true; });
}

Modifier given() {
  return OfText([](Text& text) { text.isGiven = true; });
}

Modifier color(Color color) {
  return [color = std::move(color)](const Element& element) {
    Node node = element.node();
    if (auto* const text = std::get_if<Text>(&node)) {
      text->color = color;
    } else if (auto* const image = std::get_if<Image>(&node)) {
      image->color = color;
    } else {
      auto* const shape = std::get_if<Shape>(&node);
      LUMENQUEST_ASSERT(shape != nullptr);
      shape->fill = color;
    }
    return Element(std::move(node));
  };
}

Modifier accented() {
  return [](const Element& element) {
    return Changed<Text, Image, Shape>(element, [](auto& kind) { kind.isAccented = true; });
  };
}

Modifier rotated(double degrees) {
  return [=](const Element& element) {
    return Changed<Image>(element, [&](Image& image) { image.rotation = degrees; });
  };
}

Modifier mirrored() {
  return [](const Element& element) {
    return Changed<Image>(element, [](Image& image) { image.isMirrored = true; });
  };
}

Modifier outlined(Color color) {
  return [color = std::move(color)](const Element& element) {
    return Changed<Image>(element, [&](Image& image) { image.outline = color; });
  };
}

Modifier padding(Insets insets) {
  return [=](const Element& element) { return Element(Padding{insets, element}); };
}

namespace {

Modifier Framed(std::function<void(Frame&)> set) {
  return [set = std::move(set)](const Element& element) {
    Frame frame{{}, {}, false, false, Alignment::center, Alignment::center, element};
    set(frame);
    return Element(std::move(frame));
  };
}

}  // namespace

Modifier frame(double width, double height) {
  return Framed([=](Frame& frame) {
    frame.width = width;
    frame.height = height;
  });
}

Modifier frameWidth(double width, Alignment horizontal) {
  return Framed([=](Frame& frame) {
    frame.width = width;
    frame.horizontal = horizontal;
  });
}

Modifier fillWidth(Alignment horizontal) {
  return Framed([=](Frame& frame) {
    frame.fillsWidth = true;
    frame.horizontal = horizontal;
  });
}

Modifier fillHeight(Alignment vertical) {
  return Framed([=](Frame& frame) {
    frame.fillsHeight = true;
    frame.vertical = vertical;
  });
}

Modifier background(Color fill, double cornerRadius) {
  return [=](const Element& element) { return Element(Background{fill, cornerRadius, element}); };
}

Modifier link(std::string url) {
  return [url = std::move(url)](const Element& element) { return Element(Link{url, element}); };
}

Modifier label(std::string text) {
  return [text = std::move(text)](const Element& element) { return Element(Label{text, element}); };
}

namespace {

/// Calls `visit` for every node, parents first; where it returns false, not for what is inside.
void Walk(const Element& element, const std::function<bool(const Node&)>& visit) {
  const Node& node = element.node();
  if (!visit(node)) return;
  std::visit(
      [&](const auto& kind) {
        if constexpr (requires { kind.children; }) {
          // The forms of a choice say the same; the first is the fullest.
          constexpr bool isChoice = std::is_same_v<std::decay_t<decltype(kind)>, Choice>;
          for (const Element& child : kind.children) {
            Walk(child, visit);
            if (isChoice) break;
          }
        } else if constexpr (requires { kind.child; }) {
          Walk(kind.child, visit);
        }
      },
      node.base());
}

template <typename Kind, typename Field>
std::vector<std::string> Collected(const Element& element, Field Kind::*field) {
  std::vector<std::string> found;
  Walk(element, [&](const Node& node) {
    if (const auto* const kind = std::get_if<Kind>(&node)) found.push_back(kind->*field);
    return true;
  });
  return found;
}

}  // namespace

std::vector<std::string> textsOf(const Element& element) { return Collected(element, &Text::text); }

std::vector<std::string> linksOf(const Element& element) { return Collected(element, &Link::url); }

std::vector<std::string> imagesOf(const Element& element) {
  return Collected(element, &Image::name);
}

std::string isolated(const std::string& words) {
  if (words.empty()) return "";
  constexpr std::string_view kFirstStrongIsolate = "\u2068", kPopIsolate = "\u2069";
  constexpr std::string_view kIsolates[] = {"\u2066", "\u2067", kFirstStrongIsolate};
  constexpr std::string_view kBreaks[] = {"\n",   "\r",     "\x1c",   "\x1d",
                                          "\x1e", "\u0085", "\u2028", "\u2029"};
  std::string text(kFirstStrongIsolate);
  int open = 0;
  for (std::size_t i = 0; i < words.size();) {
    const std::string_view rest = std::string_view(words).substr(i);
    const auto begins = [&](std::string_view mark) { return rest.starts_with(mark); };
    if (const auto* const mark = std::ranges::find_if(kBreaks, begins); mark != std::end(kBreaks)) {
      text += ' ';
      i += mark->size();
    } else if (begins(kPopIsolate)) {
      // One too many would end our own.
      if (open > 0) text += kPopIsolate;
      open = std::max(0, open - 1);
      i += kPopIsolate.size();
    } else {
      if (std::ranges::any_of(kIsolates, begins)) ++open;
      text += words[i++];
    }
  }
  for (; open >= 0; --open) text += kPopIsolate;
  return text;
}

std::string descriptionOf(const Element& element, const std::string& separator) {
  std::string description;
  const auto add = [&](const std::string& part) {
    if (part.empty()) return;
    if (!description.empty()) description += separator;
    description += part;
  };
  Walk(element, [&](const Node& node) {
    if (const auto* const text = std::get_if<Text>(&node)) {
      add(text->isGiven ? isolated(text->text) : text->text);
    }
    const auto* const label = std::get_if<Label>(&node);
    if (label != nullptr) add(label->text);
    return label == nullptr;
  });
  return description;
}

}  // namespace lumenquest::widgets::view
