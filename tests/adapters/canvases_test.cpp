#include <cairo.h>
#include <glib.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <stdexcept>

#include "adapters/asset_catalog.h"
#include "adapters/cairo_canvas.h"
#include "adapters/icu_services.h"
#include "adapters/pango_text.h"
#include "adapters/svg_canvas.h"
#include "adapters/svg_pictures.h"
#include "pictures.h"

namespace lumenquest::adapters {
namespace {

using namespace platform;
using ::testing::HasSubstr;
using ::testing::Not;
using testing::Pixels;
using testing::XmlContents;

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr UIColor kBlack{0, 0, 0, 1};
constexpr UIColor kRed{1, 0, 0, 1};
constexpr UIColor kBlue{0, 0, 1, 1};

using Drawing = std::function<void(Canvas&)>;

std::string Png(CGSize size, double scale, const Drawing& draw) {
  CairoCanvas canvas(size, scale);
  draw(canvas);
  return canvas.pngBytes();
}

std::string Svg(CGSize size, const Drawing& draw) {
  SvgCanvas canvas(size, "t");
  draw(canvas);
  return canvas.document("Title", "");
}

TextStyle Style(int lineLimit = 1, TextAlignment alignment = TextAlignment::leading,
                bool isRightToLeft = false) {
  TextStyle style;
  style.size = 16;
  style.lineLimit = lineLimit;
  style.alignment = alignment;
  style.isRightToLeft = isRightToLeft;
  return style;
}

TextMetrics Measure(const std::string& text, const TextStyle& style, double width = kInfinite) {
  return PangoTextMeasurer().measure(text, style, width);
}

std::vector<std::string> LinesOf(const std::string& text, const TextStyle& style, double width) {
  return XmlContents(Svg({400, 400},
                         [&](Canvas& canvas) {
                           canvas.drawText(text, style, kBlack, {0, 0, width, 400});
                         }))
      .texts;
}

TEST(Texts, AreBrokenAndShortenedToTheirLines) {
  const std::string words = "Golden hour ends after midnight";
  EXPECT_EQ(LinesOf(words, Style(3), 120),
            (std::vector<std::string>{"Golden hour", "ends after", "midnight"}));
  EXPECT_THAT(
      LinesOf(words, Style(2), 120),
      ::testing::ElementsAre("Golden hour", ::testing::AllOf(::testing::StartsWith("ends a"),
                                                             ::testing::EndsWith("…"))));

  // The limit is the whole text's, and what it leaves out is told.
  const struct {
    const char* text;
    int limit;
    std::vector<std::string> lines;
  } cases[] = {
      {"one\ntwo\r\nthree", 3, {"one", "two", "three"}},
      // Breaks that there are no lines for lose no words.
      {"\none\r\ntwo\n\nthree\u2028four\u2029", 1, {"one two three four"}},
      {"Golden hour ends after midnight at the lake of the mountains\nBled",
       2,
       {"Golden hour ends after midnight at the lake of the", "mountains…"}},
      {"a\tb\x01\x7f", 1, {"a b"}},
      {"\n\nlow", 3, {"low"}},  // empty lines show nothing
  };
  for (const auto& c : cases) {
    EXPECT_EQ(LinesOf(c.text, Style(c.limit), 400), c.lines) << c.text;
    EXPECT_EQ(Measure(c.text, Style(c.limit), 400).isTruncated, c.lines.back().back() == '\xa6')
        << c.text;
  }
  EXPECT_EQ(Measure("\n\nlow", Style(3)).lines, 3);
  EXPECT_EQ(Measure("", Style()).size.width, 0.0);
  EXPECT_EQ(Measure("", Style()).size.height, Measure("x", Style()).size.height);

  // No box is too narrow, no text too long.
  EXPECT_EQ(LinesOf(words, Style(), 0), std::vector<std::string>{"…"});
  std::string longText;
  while (longText.size() < 10000) longText += "Bohinj ";
  EXPECT_LE(Measure(longText, Style(2), 150).size.width, 150.0);
  EXPECT_GT(Measure(longText, Style(5000), 150).lines, 400);
}

TEST(Texts, DigitsOfATableAreEquallyWide) {
  TextStyle table = Style();
  table.hasMonospacedDigits = true;
  EXPECT_NE(Measure("11:11", Style()).size.width, Measure("00:00", Style()).size.width);
  EXPECT_EQ(Measure("11:11", table).size.width, Measure("00:00", table).size.width);
}

/// The largest difference of two pixels' channels.
int Apart(std::uint32_t a, std::uint32_t b) {
  int most = 0;
  for (const int shift : {0, 8, 16, 24}) {
    const int difference =
        static_cast<int>(a >> shift & 255u) - static_cast<int>(b >> shift & 255u);
    most = std::max(most, std::abs(difference));
  }
  return most;
}

/// ... and of two pictures' pixels, in the columns that both have.
int Apart(const Pixels& a, const Pixels& b) {
  int most = 0;
  for (int y = 0; y < a.height; ++y) {
    for (int x = 0; x < std::min(a.width, b.width); ++x) {
      most = std::max(most, Apart(a.at(x, y), b.at(x, y)));
    }
  }
  return most;
}

void DrawScene(Canvas& canvas) {
  canvas.fill(UIBezierPath::roundedRect({0, 0, 60, 60}, 8), UIColor{0.1, 0.2, 0.3, 1});
  canvas.save();
  canvas.concatenate(CGAffineTransform::translation(30, 20));
  canvas.clip(UIBezierPath::ellipse({-15, -15, 30, 30}));
  canvas.concatenate(CGAffineTransform::scale(2, 2));
  canvas.fill(UIBezierPath::rect({0, -10, 20, 20}), kRed);
  canvas.restore();
  canvas.stroke(UIBezierPath::rect({2, 2, 6, 36}), kBlue, Stroke{2, LineEnds::butt, true});
  canvas.drawText("18:32", Style(), UIColor{1, 1, 1, 1}, {10, 37, 50, 20});
}

TEST(CairoCanvas, DrawsTheSamePictureAtEveryScale) {
  const Pixels single(Png({60, 60}, 1, DrawScene));
  const Pixels triple(Png({60, 60}, 3, DrawScene));
  EXPECT_EQ(triple.width, 180);
  EXPECT_EQ(triple.height, 180);
  for (int y = 0; y < single.height; ++y) {
    for (int x = 0; x < single.width; ++x) {
      for (const int shift : {0, 8, 16, 24}) {
        unsigned sum = 0;
        for (int i = 0; i < 9; ++i) sum += triple.at(3 * x + i % 3, 3 * y + i / 3) >> shift & 255u;
        // The mean of the larger picture's pixels, as far as no two edges meet in one; a third of
        // a pixel's shift would be five times this.
        ASSERT_NEAR(single.at(x, y) >> shift & 255u, sum / 9.0, 15.0) << x << ' ' << y;
      }
    }
  }
  EXPECT_EQ(triple.at(0, 0), 0u);                       // outside the rounded corner
  EXPECT_EQ(triple.at(90 + 20, 60 - 20), 0xFFFF0000u);  // clipped half
  EXPECT_EQ(triple.at(90 - 20, 30), 0xFF1A334Du);
  EXPECT_EQ(triple.at(6, 60), 0xFF0000FFu);
  // A last pixel that is there in part only is there.
  EXPECT_EQ(Pixels(Png({10, 10.1}, 1.5, [](Canvas&) {})).height, 16);
}

TEST(CairoCanvas, ShowsGradientsRulesAndLines) {
  const Pixels pixels(Png({100, 60}, 1, [](Canvas& canvas) {
    Gradient linear{false,
                    {0, 0},
                    {10, 0},
                    0,
                    {{0, kRed}, {1, kBlue.withAlpha(0)}},
                    CGAffineTransform::scale(10, 1)};
    canvas.fill(UIBezierPath::rect({0, 0, 100, 10}), linear);
    // The focus is the first colour's place.
    Gradient radial{true, {15, 30}, {20, 30}, 10, {{0, kRed}, {0.5, kBlue}, {1, kBlack}}, {}};
    canvas.fill(UIBezierPath::rect({0, 10, 40, 40}), radial);
    UIBezierPath ring = UIBezierPath::rect({50, 15, 20, 20});
    ring.append(UIBezierPath::rect({55, 20, 10, 10}));
    ring.usesEvenOddFillRule = true;
    canvas.fill(ring, kRed);
    ring.usesEvenOddFillRule = false;
    canvas.save();
    canvas.concatenate(CGAffineTransform::translation(25, 0));
    canvas.fill(ring, kRed);
    canvas.restore();
    UIBezierPath line;
    line.moveTo({10, 55});
    line.lineTo({30, 55});
    canvas.stroke(line, kBlack, Stroke{6, LineEnds::round, false});
    canvas.save();
    canvas.concatenate(CGAffineTransform::translation(40, 0));
    canvas.stroke(line, kBlack, Stroke{6, LineEnds::butt, false});
    canvas.concatenate(CGAffineTransform::scale(0, 1));
    canvas.fill(UIBezierPath::rect({0, 0, 99, 99}), kBlack);  // nothing to see
    canvas.restore();
    Gradient point{true, {5, 5}, {5, 5}, 0, {{0, kRed}, {1, kBlue}}, {}};
    canvas.fill(UIBezierPath::rect({90, 50, 10, 10}), point);
  }));
  const struct {
    int x, y;
    std::uint32_t pixel;
    int tolerance;
  } places[] = {
      // Halfway colours are mixed before opacity counts: half a purple of half the opacity.
      {50, 5, 0x7F400040, 3},   {0, 5, 0xFFFF0000, 3},
      {15, 30, 0xFFFF0000, 35},                           // the focus
      {22, 30, 0xFF0000FF, 35}, {38, 30, 0xFF000000, 0},  // the last colour goes on
      {60, 25, 0, 0},  // a ring by the even-odd rule, and by the other
      {52, 25, 0xFFFF0000, 0},  {85, 25, 0xFFFF0000, 0},
      {8, 55, 0xFF000000, 0},  // round ends, and none
      {48, 55, 0, 0},           {52, 55, 0xFF000000, 0},
      {95, 55, 0xFF0000FF, 0},
  };
  for (const auto& place : places) {
    EXPECT_LE(Apart(pixels.at(place.x, place.y), place.pixel), place.tolerance)
        << place.x << ' ' << place.y;
  }
}

TEST(CairoCanvas, ClipsCutOnceAndWithinEachOther) {
  // Three colours on top of each other must not add up along an edge in the midst of a pixel,
  // whether what is clipped is small or so large that it is drawn in bands.
  for (const double side : {8.0, 600.0}) {
    platform::UIImage inner{{side, side}, {}};
    const auto left =
        std::make_shared<const UIBezierPath>(UIBezierPath::rect({0, 0, side / 2 + 0.5, side}));
    const UIBezierPath whole = UIBezierPath::rect({0, 0, side, side});
    for (const UIColor& color : {kRed, kBlack, kBlue}) {
      inner.shapes.push_back({whole, color, {}, {}, left});
    }
    platform::ImageContext outer({side, side});
    outer.save();
    outer.clip(UIBezierPath::rect({0, 0, side, side / 2}));
    outer.embedImage(std::make_shared<const platform::UIImage>(inner), {0, 0, side, side}, {});
    outer.restore();
    outer.fill(UIBezierPath::rect({0, side - 1, 1, 1}), kRed);
    const Pixels pixels(Png({side, side}, 1, [&](Canvas& canvas) {
      canvas.drawImage(outer.image(), {0, 0, side, side}, {});
    }));
    const int half = static_cast<int>(side) / 2;
    EXPECT_EQ(pixels.at(half - 1, half - 1), 0xFF0000FFu) << side;
    EXPECT_NEAR(pixels.at(half, half - 1) >> 24, 128, 2) << side;
    EXPECT_EQ(pixels.at(half - 1, half), 0u) << side;
    EXPECT_EQ(pixels.at(0, 2 * half - 1), 0xFFFF0000u) << side;
  }
}

/// The picture within another one, turned and off the pixels' grid.
std::string PngWithin(const std::shared_ptr<const UIImage>& inner, double left,
                      const UIColor& color = kRed, double side = 20.0) {
  ImageContext outer({80, 80});
  outer.save();
  outer.clip(UIBezierPath::ellipse({left, 10, 1.5 * side, 1.5 * side}));
  outer.concatenate(CGAffineTransform::rotation(0.2));
  outer.embedImage(inner, {left + 5.3, 7.7, side, side}, color);
  outer.restore();
  return Png({80, 80}, 3, [&](Canvas& canvas) {
    canvas.drawImage(outer.image(), {0, 0, 80, 80}, {});
  });
}

UIImage Disc(const UIColor& middle) {
  UIImage image{{10, 10}, {}};
  const Gradient glow{true, {4, 4}, {5, 5}, 5, {{0, middle}, {1, kBlack.withAlpha(0.5)}}, {}};
  image.shapes.push_back({UIBezierPath::ellipse({0, 0, 10, 10}), glow});
  image.shapes.push_back({UIBezierPath::rect({4, 4, 2, 2}), CurrentColor{0.5}});
  image.shapes.push_back(
      {UIBezierPath::rect({-2, 5, 14, 1}), {}, UIColor{0, 1, 0, 0.5}, Stroke{0.7}});
  return image;
}

TEST(CairoCanvas, KeptPixelsAreThoseOfAFreshPicture) {
  const auto kept = std::make_shared<const UIImage>(Disc(kBlue));
  const auto fresh = [] { return std::make_shared<const UIImage>(Disc(kBlue)); };
  const std::string cold = PngWithin(fresh(), 3);
  EXPECT_EQ(PngWithin(kept, 3), cold);
  EXPECT_EQ(PngWithin(kept, 3), cold);
  // Elsewhere, in another colour or size, it is another picture.
  EXPECT_EQ(PngWithin(kept, 9.1), PngWithin(fresh(), 9.1));
  EXPECT_EQ(PngWithin(kept, 3, kBlack), PngWithin(fresh(), 3, kBlack));
  EXPECT_NE(PngWithin(kept, 3, kBlack), cold);
  // More than is kept.
  for (double side = 20.0; side < 60.0; side += 0.5) PngWithin(kept, 3, kRed, side);
  EXPECT_EQ(PngWithin(kept, 3), cold);
  // A picture that stands where one was that is gone.
  for (int i = 1; i < 20; ++i) {
    const UIColor color{i / 20.0, 0, 1, 1};
    const Pixels drawn(PngWithin(std::make_shared<const UIImage>(Disc(color)), 3));
    const Pixels other(PngWithin(std::make_shared<const UIImage>(Disc(kBlue)), 3));
    EXPECT_NE(drawn.at(54, 60), other.at(54, 60)) << i;
  }
}

TEST(CairoCanvas, BandsHaveNoSeams) {
  const auto draw = [](Canvas& canvas) {
    canvas.fill(UIBezierPath::ellipse({3, 3, 34, 290}),
                Gradient{false, {0, 0}, {40, 300}, 0, {{0, kRed}, {1, kBlue}}, {}});
    canvas.save();
    canvas.clip(UIBezierPath::ellipse({5.5, 20, 20, 250}));
    canvas.drawText("Moon", Style(), kBlack, {4, 21, 100, 30});
    canvas.stroke(UIBezierPath::ellipse({8, 30, 20, 200}), UIColor{0, 1, 0, 0.5}, Stroke{3});
    canvas.restore();
  };
  // The wider a picture, the lower its bands: the narrow one is a single band.
  const Pixels narrow(Png({40, 300}, 1, draw));
  const Pixels wide(Png({4000, 300}, 1, draw));
  EXPECT_EQ(Apart(narrow, wide), 0);
}

TEST(CairoCanvas, SaysItsColourSpaceAndSizeAndRefusesTheImpossible) {
  const std::string png = Png({10, 10}, 3, [](Canvas&) {});
  EXPECT_NE(png.find("sRGB"), std::string::npos);
  // 3 × 96 pixels an inch are 11339 a metre.
  EXPECT_NE(png.find(std::string("pHYs\0\0\x2c\x4b\0\0\x2c\x4b\1", 13)), std::string::npos);
  for (const auto& [points, scale] : {std::pair{10.0, 0.5},
                                      {10.0, std::nan("")},
                                      {0.0, 1.0},
                                      {std::nan(""), 1.0},
                                      {kInfinite, 1.0},
                                      {2049.0, 4.0}}) {
    EXPECT_THROW(CairoCanvas({points, 10}, scale), std::runtime_error) << points << ' ' << scale;
  }
  EXPECT_NO_THROW(CairoCanvas({2048, 1}, 4));
}

TEST(SvgCanvas, WritesWhatIsDrawnOnce) {
  const auto draw = [](Canvas& canvas) {
    DrawScene(canvas);
    canvas.drawImage(Disc(kBlue), {0, 0, 8, 8}, kRed);
    canvas.drawImage(Disc(kBlue), {8, 0, 8, 8}, kBlue);
  };
  const std::string svg = Svg({60, 40}, draw);
  EXPECT_EQ(svg, Svg({60, 40}, draw));
  const XmlContents contents(svg);
  EXPECT_EQ(contents.attributes.count("gradientUnits"), 1u);
  EXPECT_EQ(contents.attributes.count("offset"), 2u);
  EXPECT_EQ(contents.attribute("stop-opacity"), "0.5");
  EXPECT_EQ(contents.texts, std::vector<std::string>{"18:32"});
  EXPECT_THAT(svg, HasSubstr("<g transform=\"matrix(1 0 0 1 30 20)\"><g clip-path=\"url(#t-1)\">"
                             "<g transform=\"matrix(2 0 0 2 0 0)\">"
                             "<path d=\"M0-10l20 0 0 20L0 10Z\" fill=\"#ff0000\"/></g></g></g>"));
}

/// What a document shows, as one of our pictures.
UIImage ReadBack(const std::string& svg, double side) {
  const std::string box = std::to_string(static_cast<int>(side));
  const std::size_t body = svg.find("</desc>") + 7;
  return readSvgPicture("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + box + " " +
                            box + "\">" + svg.substr(body),
                        "written");
}

TEST(SvgCanvas, TheMoonIsSmallAndReadsBackAsItself) {
  FileAssetCatalog catalog(std::filesystem::path(LUMENQUEST_TEST_RESOURCES) / "art");
  const auto moon = catalog.imageNamed("moon");
  ASSERT_NE(moon, nullptr);
  constexpr double kSide = 62.0;
  const auto draw = [&](Canvas& canvas) { canvas.drawImage(*moon, {0, 0, kSide, kSide}, {}); };
  const std::string svg = Svg({kSide, kSide}, draw);
  EXPECT_LT(svg.size(), 110'000u);
  const Pixels expected(Png({kSide, kSide}, 3, draw));
  const Pixels written(Png({kSide, kSide}, 3, [&](Canvas& canvas) {
    canvas.drawImage(ReadBack(svg, kSide), {0, 0, kSide, kSide}, {});
  }));
  EXPECT_LE(Apart(expected, written), 12);
}

TEST(Canvases, TextsStandAtTheMeasuredPlaces) {
  struct {
    bool isRightToLeft;
    TextAlignment alignment;
    const char* anchor;
    double part;  // of the room to the left, and of the width
  } const cases[] = {
      {false, TextAlignment::leading, "", 0.0},     {false, TextAlignment::center, "middle", 0.5},
      {false, TextAlignment::trailing, "end", 1.0}, {true, TextAlignment::leading, "", 1.0},
      {true, TextAlignment::center, "middle", 0.5}, {true, TextAlignment::trailing, "end", 0.0},
  };
  constexpr CGRect kBox{20, 10, 200, 40};
  for (const std::string text : {"Sunset 18:32", "שקיעה 18:32", "日の入り 18:32", "🌄 18:32"}) {
    for (const auto& c : cases) {
      SCOPED_TRACE(text + (c.isRightToLeft ? " rtl " : " ltr ") + c.anchor);
      const TextStyle style = Style(1, c.alignment, c.isRightToLeft);
      const TextMetrics metrics = Measure(text, style, kBox.width);
      const auto draw = [&](Canvas& canvas) { canvas.drawText(text, style, kBlack, kBox); };
      const XmlContents contents(Svg({240, 50}, draw));
      EXPECT_EQ(contents.attribute("text-anchor"), c.anchor);
      EXPECT_NEAR(std::stod(contents.attribute("x")), kBox.x + c.part * kBox.width, 0.006);
      EXPECT_NEAR(std::stod(contents.attribute("y")), kBox.y + metrics.baseline, 0.006);
      EXPECT_NEAR(std::stod(contents.attribute("textLength")), metrics.size.width, 0.006);
      EXPECT_EQ(contents.attribute("direction"), c.isRightToLeft ? "rtl" : "");

      constexpr double kScale = 2.0;
      const CGRect ink = Pixels(Png({240, 50}, kScale, draw)).ink();
      const double left = kBox.x + c.part * (kBox.width - metrics.size.width);
      // Glyphs may reach a little beyond their advance.
      constexpr double kSlack = 1.0;
      EXPECT_GE(ink.x / kScale, left - kSlack);
      EXPECT_LE((ink.x + ink.width) / kScale, left + metrics.size.width + kSlack);
      EXPECT_GE(ink.width / kScale, 0.8 * metrics.size.width);
      EXPECT_GE(ink.y / kScale, kBox.y - kSlack);
      EXPECT_LE((ink.y + ink.height) / kScale, kBox.y + metrics.size.height + kSlack);
    }
  }
}

TEST(SvgCanvas, KeepsLinksAndLabelsAndLeavesOutWhatIsEmpty) {
  const auto dot = UIBezierPath::rect({0, 0, 1, 1});
  const std::string svg = Svg({10, 10}, [&](Canvas& canvas) {
    canvas.save();
    canvas.concatenate(CGAffineTransform::scale(2, 2));
    canvas.concatenate(CGAffineTransform::translation(1, 1));
    canvas.beginLink("app://plan?a=1&b=2");
    canvas.beginLabel("Moon \"full\"");
    canvas.fill(dot, kRed);
    canvas.endLabel();
    canvas.endLink();
    canvas.restore();
    canvas.beginLink("app://nothing");
    canvas.endLink();
  });
  EXPECT_THAT(svg,
              HasSubstr("<g transform=\"matrix(2 0 0 2 2 2)\"><a href=\"app://plan?a=1&amp;b=2\">"
                        "<g role=\"img\" aria-label=\"Moon &quot;full&quot;\">"
                        "<path d=\"M0 0 1 0 1 1 0 1Z\" fill=\"#ff0000\"/></g></a></g></svg>"));
  EXPECT_THAT(svg, Not(HasSubstr("nothing")));
  // A reader passes by what an image holds.
  EXPECT_THAT(svg, HasSubstr("role=\"group\" aria-labelledby"));
}

TEST(SvgCanvas, SaysItsLanguage) {
  for (const std::string& tag :
       {languageTag("he_IL.UTF-8@calendar=hebrew"), std::string("en-GB"), std::string()}) {
    setTextLanguage(tag);
    const XmlContents contents(Svg({1, 1}, [](Canvas&) {}));
    EXPECT_EQ(contents.attribute("lang"), tag);
    EXPECT_EQ(contents.attribute("xml:lang"), tag);
  }
}

TEST(SvgCanvas, AnyTextMakesAWellFormedDocument) {
  std::string controls;
  for (char c = 1; c < 32; ++c) controls += c;
  const std::string texts[] = {"]]><script>alert('1')</script>&amp;&#0;", controls + "\x7f\xc2\x85",
                               std::string("a\0b", 3), "\xff\xfe\xc0\x80\xed\xa0\x80 broken",
                               "\xef\xbf\xbe noncharacter \u202Eoverride\u2066"};
  for (const std::string& text : texts) {
    SCOPED_TRACE(text);
    SvgCanvas canvas({100, 100}, "p1");
    canvas.beginLink(text);
    canvas.beginLabel(text);
    canvas.drawText(text, Style(3), kBlack, {0, 0, 90, 90});
    canvas.endLabel();
    canvas.endLink();
    const std::string svg = canvas.document(text, text);
    const XmlContents contents(svg);
    EXPECT_EQ(svg.find('\0'), std::string::npos);
    EXPECT_EQ(svg.find_first_of("\x01\x08\x0b\x1f"), std::string::npos);
    EXPECT_EQ(svg.find("\xef\xbf\xbe"), std::string::npos);
    EXPECT_EQ(svg.find("<script"), std::string::npos);
    Png({100, 100}, 1, [&](Canvas& other) {
      other.drawText(text, Style(3), kBlack, {0, 0, 90, 90});
    });
  }
  EXPECT_THROW(SvgCanvas({1, 1}, "a\""), std::runtime_error);
  EXPECT_THROW(SvgCanvas({0, 1}, "a"), std::runtime_error);
}

}  // namespace
}  // namespace lumenquest::adapters
