// Where elements come to stand: with letters of a known size, to the point.

#include "widgets/view/layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "fake_views.h"

namespace lumenquest::platform {

inline void PrintTo(const CGRect& rect, std::ostream* out) {
  *out << rect.x << "," << rect.y << " " << rect.width << "x" << rect.height;
}

}  // namespace lumenquest::platform

namespace lumenquest::widgets::view {
namespace {

using platform::CGRect;
using platform::CGSize;
using platform::UIColor;
using testing::BlockLetters;
using ::testing::ElementsAre;
using testing::FewAssets;
using testing::Recorder;

constexpr CGSize kRoom{100.0, 60.0};
const Color kRed = UIColor{1.0, 0.0, 0.0, 1.0};

void CollectLeaves(const Box& box, std::vector<Box>& leaves) {
  if (std::holds_alternative<Spacer>(*box.node)) return;
  if (box.children.empty() && !std::holds_alternative<DepthStack>(*box.node)) leaves.push_back(box);
  for (const Box& child : box.children) CollectLeaves(child, leaves);
}

/// Texts, pictures and shapes, in order.
std::vector<Box> Leaves(const Element& element, CGSize room = kRoom, bool isRightToLeft = false) {
  Environment environment;
  if (isRightToLeft) environment.layoutDirection = LayoutDirection::rightToLeft;
  BlockLetters letters;
  std::vector<Box> leaves;
  CollectLeaves(layOut(element, room, environment, letters), leaves);
  return leaves;
}

std::vector<CGRect> Rects(const Element& element, CGSize room = kRoom, bool isRightToLeft = false) {
  std::vector<CGRect> rects;
  for (const Box& leaf : Leaves(element, room, isRightToLeft)) rects.push_back(leaf.rect);
  return rects;
}

Element Block(double width, double height) { return shape(kRed) | frame(width, height); }
/// Letters are 4 by 10 points.
Element Word(const char* word) { return text(word) | font(8.0); }

/// The root fills what it is given, so each case wraps what it is about.
Element Within(Element element) { return zstack({std::move(element)}); }

TEST(Layout, PlacesEachKindOfElement) {
  struct Case {
    const char* what;
    Element element;
    std::vector<CGRect> rects;
  };
  const Case cases[] = {
      {"an image its size, in the middle", Within(image("sun", 31)), {{34.5, 14.5, 31, 31}}},
      {"beside each other, centred across",
       Within(hstack({Block(20, 10), Block(30, 20)}, 4)),
       {{23, 25, 20, 10}, {47, 20, 30, 20}}},
      {"below each other, at the leading edge",
       Within(vstack({Block(20, 10), Block(30, 20)}, 4, Alignment::start)),
       {{35, 13, 20, 10}, {35, 27, 30, 20}}},
      {"a spacer takes the rest",
       hstack({Block(20, 60), spacer(), Block(30, 60)}),
       {{0, 0, 20, 60}, {70, 0, 30, 60}}},
      {"none is shorter than its least",
       Within(hstack({Block(48, 60), spacer(8), Block(48, 60)})),
       {{-2, 0, 48, 60}, {54, 0, 48, 60}}},
      {"on top of each other",
       zstack({Block(40, 40), Block(20, 20)}),
       {{30, 10, 40, 40}, {40, 20, 20, 20}}},
      {"a shape takes all but for its padding",
       shape(kRed) | padding({1, 2, 3, 4}),
       {{2, 1, 94, 56}}},
      {"padding larger than its room", shape(kRed) | padding(insets(80)), {{80, 80, 0, 0}}},
      {"a frame of one length",
       hstack({Block(10, 60) | frameWidth(30, Alignment::end), Block(10, 60)}),
       {{20, 0, 10, 60}, {30, 0, 10, 60}}},
      {"a frame that fills",
       Within(Block(10, 10) | fillWidth(Alignment::end) | fillHeight(Alignment::end)),
       {{90, 50, 10, 10}}},
      {"rigid ones first, the rest is shared",
       hstack({shape(kRed), Block(40, 60), shape(kRed)}),
       {{0, 0, 30, 60}, {30, 0, 40, 60}, {70, 0, 30, 60}}},
      {"the first form that is narrow enough",
       Within(firstThatFits(Axis::horizontal, {Block(120, 10), Block(90, 10), Block(10, 10)})),
       {{5, 25, 90, 10}}},
      {"... or low enough, else the last",
       Within(firstThatFits(Axis::vertical, {Block(10, 90), Block(10, 70)})),
       {{45, -5, 10, 70}}},
      {"by the room, whatever fits",
       Within(fromWidth(100.5, Block(120, 10), Block(90, 10))),
       {{-10, 25, 120, 10}}},
      {"nothing takes no room",
       Within(hstack({nothing(), Block(20, 10), text("")})),
       {{40, 25, 20, 10}, {60, 30, 0, 0}}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Rects(c.element), c.rects) << c.what;
    // The same, seen in a mirror.
    std::vector<CGRect> mirrored = c.rects;
    for (CGRect& rect : mirrored) rect.x = kRoom.width - rect.x - rect.width;
    EXPECT_EQ(Rects(c.element, kRoom, true), mirrored) << c.what;
  }
}

TEST(Layout, TextsShrinkThenBreakThenLoseWords) {
  struct Case {
    const char* what;
    Element element;
    double width;
    double size;
    int lines;
    bool isTruncated;
  };
  const Case cases[] = {
      {"by a hair", Word("midnight"), 31.6, 8, 1, false},
      {"may not shrink", Word("midnight"), 28, 8, 1, true},
      {"shrinks no more than it must", Word("midnight") | minScale(0.5), 28.4, 7.2, 1, false},
      {"to its least size", Word("midnight") | minScale(0.5), 16, 4, 1, false},
      {"and no further", Word("midnight") | minScale(0.5), 12, 4, 1, true},
      {"breaks before it shrinks", Word("blue hour") | lineLimit(2) | minScale(0.5), 20, 8, 2,
       false},
      {"shrinks where breaking does not do", Word("blue midnight") | lineLimit(2) | minScale(0.5),
       24, 6, 2, false},
      {"more words than lines", Word("one two three") | lineLimit(2), 20, 8, 2, true},
  };
  for (const Case& c : cases) {
    const std::vector<Box> leaves = Leaves(c.element, {c.width, 40.0});
    ASSERT_EQ(leaves.size(), 1u);
    EXPECT_NEAR(leaves[0].textStyle.size, c.size, 1e-9) << c.what;
    EXPECT_EQ(leaves[0].isTruncated, c.isTruncated) << c.what;
    const double height = Rects(Within(c.element), {c.width, 40.0})[0].height;
    EXPECT_NEAR(height, c.lines * 1.25 * c.size, 1e-9) << c.what;
  }
  // A lower box makes several lines shrink, a single one stands out of it instead.
  const auto low = Leaves(Word("blue hour") | lineLimit(2) | minScale(0.5), {20, 16});
  EXPECT_NEAR(low[0].textStyle.size, 6.4, 1e-9);
  EXPECT_EQ(Leaves(Word("blue") | minScale(0.5), {20, 4})[0].textStyle.size, 8.0);
}

TEST(Layout, WhatNobodyCouldReadIsLeftOut) {
  const auto words = [](const std::string& given) {
    return std::get<Text>(text(given).node()).text;
  };
  EXPECT_EQ(words(std::string(501, 'a')), std::string(500, 'a') + "…");
  // Characters are left whole.
  std::string umlauts;
  for (int i = 0; i < 10000; ++i) umlauts += "ä";
  EXPECT_EQ(words(umlauts), umlauts.substr(0, 1000) + "…");
}

TEST(Layout, ADeepTreeIsAskedOnce) {
  // Every stack asks its children thrice; without a memory 3^12 questions reach the text.
  Element tree = Word("deep");
  for (int depth = 0; depth < 12; ++depth) tree = hstack({tree, spacer(), Block(1, 1)});
  BlockLetters letters;
  layOut(tree, {200, 60}, {}, letters);
  EXPECT_LT(letters.measurements, 200);
}

Recorder Drawn(const Element& view, const Environment& environment, FewAssets& assets) {
  BlockLetters letters;
  Recorder canvas;
  draw(view, {20, 20}, environment, letters, assets, canvas);
  return canvas;
}

TEST(Drawing, ColoursAreThoseOfSchemeAndMode) {
  FewAssets assets;
  assets.colors = {{"contentPrimary", {0, 0.5, 0.5, 1}}, {"contentTertiary", {0, 0.2, 0.2, 1}}};
  const Element view =
      vstack({text("plain"), text("faint") | color(named("contentTertiary")),
              text("mine") | accented(), text("half") | color(named("contentPrimary", 0.5)),
              text("unknown") | color(named("noSuchColour"))});
  const auto colors = [&](const Environment& environment) {
    std::vector<UIColor> found;
    const Recorder canvas = Drawn(view, environment, assets);
    for (const auto& word : canvas.words) found.push_back(word.color);
    return found;
  };
  Environment environment;
  environment.colorScheme = platform::ColorScheme::light;
  const UIColor primary{1, 0.5, 0.5, 1};
  EXPECT_THAT(colors(environment), ElementsAre(primary, UIColor{1, 0.2, 0.2, 1}, primary,
                                               primary.withAlpha(0.5), UIColor{0, 0, 0, 1}));
  environment.renderingMode = WidgetRenderingMode::accented;
  environment.accent = {0.9, 0.1, 0.1, 1};
  const UIColor white{1, 1, 1, 1};
  EXPECT_THAT(colors(environment), ElementsAre(white, white.withAlpha(0.75), environment.accent,
                                               white.withAlpha(0.5), white));
}

TEST(Drawing, PicturesAreTurnedAndMirrored) {
  // A dot in the picture's upper leading corner.
  FewAssets assets;
  platform::UIImage picture{{10, 10}, {}};
  picture.shapes.push_back({platform::UIBezierPath::rect({0, 0, 1, 1}), platform::CurrentColor{}});
  assets.images["dot"] = std::make_shared<platform::UIImage>(picture);
  const struct {
    Element element;
    bool isRightToLeft;
    platform::CGPoint at;
  } cases[] = {{image("dot", 20), true, {1, 1}},
               {image("dot", 20) | mirrored(), false, {1, 1}},
               {image("dot", 20) | mirrored(), true, {19, 1}},
               {image("dot", 20) | rotated(90), false, {19, 1}}};
  for (const auto& c : cases) {
    Environment environment;
    if (c.isRightToLeft) environment.layoutDirection = LayoutDirection::rightToLeft;
    const Recorder canvas = Drawn(c.element, environment, assets);
    // Of two opposite corners the middle.
    const auto& corners = canvas.fills.at(0).path.segments();
    EXPECT_NEAR(corners[0].end().x + corners[2].end().x, 2.0 * c.at.x, 1e-9) << &c - cases;
    EXPECT_NEAR(corners[0].end().y + corners[2].end().y, 2.0 * c.at.y, 1e-9) << &c - cases;
  }
}

TEST(Drawing, LinksWithinLinksTakeTheirPlace) {
  const Element view =
      vstack({text("a"), text("b") | link("x://inner"), text("c")}) | link("x://outer");
  FewAssets assets;
  const Recorder canvas = Drawn(view, {}, assets);
  std::vector<std::string> links;
  for (const auto& word : canvas.words) links.push_back(word.link);
  EXPECT_THAT(links, ElementsAre("x://outer", "x://inner", "x://outer"));
}

TEST(Description, IsOfLabelsAndTextsAndKeepsUsersWordsApart) {
  EXPECT_EQ(descriptionOf(vstack({text("a") | label("long for a"), text(""), text("b")})),
            "long for a. b");
  EXPECT_EQ(descriptionOf(vstack({text("mine") | given(), text("") | given(), text("b")})),
            "\u2068mine\u2069. b");
  // An override ends with its isolate; isolates within are closed, and too many ends left out.
  const std::pair<const char*, const char*> cases[] = {
      {"\u202Eevil", "\u2068\u202Eevil\u2069"},
      {"\u2067a\u2066b", "\u2068\u2067a\u2066b\u2069\u2069\u2069"},
      {"\u2066a\u2069\u2069b", "\u2068\u2066a\u2069b\u2069"},
      {"a\n\u202Eb\u2029c", "\u2068a \u202Eb c\u2069"},
  };
  for (const auto& [words, expected] : cases) EXPECT_EQ(isolated(words), expected);
}

}  // namespace
}  // namespace lumenquest::widgets::view
