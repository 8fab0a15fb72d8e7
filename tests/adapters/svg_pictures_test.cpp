#include "adapters/svg_pictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace lumenquest::adapters {
namespace {

using platform::CGPoint;
using platform::CurrentColor;
using platform::Gradient;
using platform::LineEnds;
using platform::PictureShape;
using platform::UIBezierPath;
using platform::UIColor;
using platform::UIImage;
using ::testing::HasSubstr;
using Verb = UIBezierPath::Verb;

std::string Document(const std::string& content) {
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 24 12\">\n" + content +
         "\n</svg>";
}

UIImage Read(const std::string& content) { return readSvgPicture(Document(content), "test.svg"); }

PictureShape OnlyShape(const std::string& content) {
  const UIImage image = Read(content);
  EXPECT_EQ(image.shapes.size(), 1u) << content;
  return image.shapes.empty() ? PictureShape{} : image.shapes.front();
}

/// A path as absolute commands, to a hundredth.
std::string Said(const UIBezierPath& path) {
  std::string text;
  const auto add = [&](CGPoint point) {
    for (const double value : {point.x, point.y}) {
      char number[32];
      std::snprintf(number, sizeof number, " %g", std::round(value * 100.0) / 100.0 + 0.0);
      text += number;
    }
  };
  for (const auto& [verb, points] : path.segments()) {
    text += "MLCZ"[static_cast<int>(verb)];
    for (int i = 0; i < (verb == Verb::close ? 0 : verb == Verb::curve ? 3 : 1); ++i) {
      add(points[static_cast<std::size_t>(i)]);
    }
  }
  return text;
}

TEST(SvgPictures, PathsAreUnderstoodHoweverShortTheyAre) {
  const std::pair<const char*, const char*> cases[] = {
      {"M1.5.5-2 3", "M 1.5 0.5L -2 3"},
      {"M1e1-1E-1,+.5 2", "M 10 -0.1L 0.5 2"},
      {"M 1 2 H 5 6 V 7 h-1v-1", "M 1 2L 5 2L 6 2L 6 7L 5 7L 5 6"},
      // After Z the figure's start is current again.
      {"M1 1l2 0zl0 2", "M 1 1L 3 1ZM 1 1L 1 3"},
      {"M0 0C1 0 2 1 2 2S3 4 4 4", "M 0 0C 1 0 2 1 2 2C 2 3 3 4 4 4"},
      {"M1 1c1 0 2 1 2 2s1 2 2 2", "M 1 1C 2 1 3 2 3 3C 3 4 4 5 5 5"},
      // Without a curve before it, S leaves from where it is.
      {"M1 1S3 4 4 4", "M 1 1C 1 1 3 4 4 4"},
      {"M0 0q3 0 3 3Q3 6 6 6", "M 0 0C 2 0 3 1 3 3C 3 5 4 6 6 6"},
      // Quarters of circles of radius 1; flags need no space.
      {"M1 0a1 1 0 01-1 1", "M 1 0C 1 0.55 0.55 1 0 1"},
      // The long way round, to the left; half a right angle's turn of an ellipse twice as long as
      // wide.
      {"M1 0A1 1 0 1 0 0 1",
       "M 1 0C 1 -0.55 0.55 -1 0 -1C -0.55 -1 -1 -0.55 -1 0C -1 0.55 -0.55 1 0 1"},
      {"M1.41421 1.41421A2 1 45 0 1-.70711.70711",
       "M 1.41 1.41C 1.23 1.6 0.9 1.63 0.5 1.5C 0.1 1.37 -0.33 1.08 -0.71 0.71"},
      // Radii that do not reach are made larger; none are a line.
      {"M0 0A1 1 0 0 1 4 0", "M 0 0C 0 -1.1 0.9 -2 2 -2C 3.1 -2 4 -1.1 4 0"},
      {"M0 0A0 5 0 0 1 4 0", "M 0 0L 4 0"},
  };
  for (const auto& [data, said] : cases) {
    EXPECT_EQ(Said(OnlyShape("<path d=\"" + std::string(data) + "\"/>").path), said) << data;
  }
}

TEST(SvgPictures, ShapesStandWhereTheirTransformsPutThem) {
  const std::pair<const char*, const char*> cases[] = {
      {"<rect x='1' y='2' width='3' height='4'/>", "M 1 2L 4 2L 4 6L 1 6Z"},
      // The last one acts first.
      {"<rect width='1' height='1' transform='translate(1,2) scale(2 3)'/>",
       "M 1 2L 3 2L 3 5L 1 5Z"},
      {"<g transform='translate(1 2)'><g transform='scale(2)'><rect width='1' height='1'/></g></g>",
       "M 1 2L 3 2L 3 4L 1 4Z"},
      {"<path d='M3 2' transform='rotate(90 2 2)'/>", "M 2 3"},
      {"<path d='M1 1' transform='matrix(1 2 3 4 5 6)'/>", "M 9 12"},
      {"<circle cx='2' cy='3' r='1'/>",
       "M 2 2C 2.55 2 3 2.45 3 3C 3 3.55 2.55 4 2 4C 1.45 4 1 3.55 1 3C 1 2.45 1.45 2 2 2Z"},
      {"<ellipse cx='2' rx='2' ry='1'/>",
       "M 2 -1C 3.1 -1 4 -0.55 4 0C 4 0.55 3.1 1 2 1C 0.9 1 0 0.55 0 0C 0 -0.55 0.9 -1 2 -1Z"},
  };
  for (const auto& [content, said] : cases) {
    EXPECT_EQ(Said(OnlyShape(content).path), said) << content;
  }
}

TEST(SvgPictures, PaintsAndLinesAreHandedOnToWhatIsInside) {
  const UIImage image = Read(
      "<title>A &amp; B</title><!-- note -->"
      "<g fill='#336699' fill-opacity='.5' opacity='.5' stroke='currentColor' stroke-width='2' "
      "stroke-linecap='round' transform='scale(3)'>"
      "<path d='M0 0h1' opacity='.8'/>"
      "<path d='M0 0h1' fill='none' stroke-opacity='.5' stroke-linejoin='round'/>"
      "<path d='M0 0h1' stroke='none' fill='#fff' fill-rule='evenodd'/>"
      "<path d='M0 0h1' stroke-width='0' fill='none'/></g>");
  EXPECT_EQ(image.size, (platform::CGSize{24, 12}));
  ASSERT_EQ(image.shapes.size(), 3u);  // the last one shows nothing
  const auto& [first, second, third] = std::tie(image.shapes[0], image.shapes[1], image.shapes[2]);
  const auto color = std::get<UIColor>(*first.fill);
  EXPECT_DOUBLE_EQ(color.red, 0.2);
  EXPECT_DOUBLE_EQ(color.blue, 0.6);
  EXPECT_DOUBLE_EQ(color.alpha, 0.2);
  EXPECT_DOUBLE_EQ(std::get<CurrentColor>(*first.strokePaint).alpha, 0.4);
  EXPECT_DOUBLE_EQ(first.stroke.width, 6.0);
  EXPECT_EQ(first.stroke.ends, LineEnds::round);
  EXPECT_FALSE(second.fill);
  EXPECT_DOUBLE_EQ(std::get<CurrentColor>(*second.strokePaint).alpha, 0.25);
  EXPECT_TRUE(second.stroke.hasRoundJoins);
  EXPECT_FALSE(third.strokePaint);
  EXPECT_TRUE(third.path.usesEvenOddFillRule);
  EXPECT_EQ(std::get<UIColor>(*OnlyShape("<path d='M0 0'/>").fill), (UIColor{0, 0, 0, 1}));
}

TEST(SvgPictures, GradientsAndClipsComeFromDefinitions) {
  const UIImage image = Read(
      "<circle cx='1' cy='1' r='1' fill='url(#r)' opacity='.5' transform='translate(2 3)'/>"
      "<g clip-path='url(#c)' transform='scale(2)'><path d='M0 0h1' fill='url(#l)'/>"
      "<path d='M0 0h2'/></g>"
      "<defs><radialGradient id='r' gradientUnits='userSpaceOnUse' cx='1' cy='2' r='3' fx='1.5' "
      "gradientTransform='scale(2)'><stop offset='25%' stop-color='#ff0000'/>"
      "<stop offset='1' stop-color='#00ff00' stop-opacity='.5'/></radialGradient>"
      "<linearGradient id='l' gradientUnits='userSpaceOnUse' x1='1' y1='2' x2='3' y2='4'>"
      "<stop offset='0' stop-color='#000'/></linearGradient>"
      "<clipPath id='c'><rect width='1' height='1' transform='translate(1)' "
      "clip-rule='evenodd'/></clipPath></defs>");
  ASSERT_EQ(image.shapes.size(), 3u);
  const auto radial = std::get<Gradient>(*image.shapes[0].fill);
  EXPECT_TRUE(radial.isRadial);
  EXPECT_EQ(radial.start, (CGPoint{1.5, 2}));
  EXPECT_EQ(radial.end, (CGPoint{1, 2}));
  EXPECT_EQ(radial.radius, 3.0);
  // First the gradient's own transform, then the shape's.
  EXPECT_EQ(radial.transform.apply({1, 1}), (CGPoint{4, 5}));
  ASSERT_EQ(radial.stops.size(), 2u);
  EXPECT_EQ(radial.stops[0], (platform::GradientStop{0.25, {1, 0, 0, 0.5}}));
  EXPECT_EQ(radial.stops[1], (platform::GradientStop{1.0, {0, 1, 0, 0.25}}));
  EXPECT_EQ(image.shapes[0].clip, nullptr);

  const auto linear = std::get<Gradient>(*image.shapes[1].fill);
  EXPECT_FALSE(linear.isRadial);
  EXPECT_EQ(linear.start, (CGPoint{1, 2}));
  EXPECT_EQ(linear.end, (CGPoint{3, 4}));
  ASSERT_NE(image.shapes[1].clip, nullptr);
  EXPECT_EQ(Said(*image.shapes[1].clip), "M 2 0L 4 0L 4 2L 2 2Z");
  EXPECT_TRUE(image.shapes[1].clip->usesEvenOddFillRule);
  EXPECT_EQ(image.shapes[1].clip, image.shapes[2].clip);
}

TEST(SvgPictures, WhatIsNotUnderstoodIsNamedWithItsLine) {
  const std::string stop = "<stop offset='0' stop-color='#000'/>";
  const std::string units = " gradientUnits='userSpaceOnUse' ";
  std::string nested;
  for (int i = 0; i < 70; ++i) nested += "<g>";
  const std::pair<std::string, const char*> cases[] = {
      {"<path d='M0 0'/>\n<text>x</text>", "test.svg:3: text belongs"},
      {"<polygon points='0 0'/>", "test.svg:2: <polygon> is nothing that our pictures are made of"},
      {"<path d='M0 0' style='fill:red'/>",
       "<path> has an attribute that our pictures do not know: style"},
      {"<circle r='1e9'/>", "1e9 is out of range"},
      {"<path d='L1 1'/>", "a path must begin with M"},
      {"<path d='M1 1L2'/>", "a number must stand where the end is"},
      {"<path d='M1 1A1 1 0 2 0 3 3'/>", "0 or 1 must stand where \"2 0 3 3\" is"},
      {"<path d='M1 1' fill='red'/>",
       "<path> fill must be none, #rrggbb, currentColor or url(#id), not \"red\""},
      {"<path d='M1 1' fill='url(#x)'/>", "refers to #x, not there"},
      {"<path d='M1 1' stroke='#000' transform='scale(1 2)'/>",
       "a stroke under an uneven transform"},
      {"<path d='M1 1' transform='skewX(3)'/>", "a transform is matrix(), translate()"},
      {"<defs><linearGradient id='a'>" + stop + "</linearGradient></defs>",
       "gradientUnits=\"userSpaceOnUse\""},
      {"<defs><radialGradient" + units + "cx='0' cy='0' r='1'/></defs>", "needs a <stop>"},
      {"<defs><radialGradient" + units + "cx='0' cy='0' r='1' fx='1'>" + stop +
           "</radialGradient></defs>",
       "fx and fy must lie within"},
      {"<defs><radialGradient" + units +
           "cx='0' cy='0' r='1'><stop offset='1' stop-color='#000'/>" + stop +
           "</radialGradient></defs>",
       "not before that of the stop before"},
      {"<defs><clipPath id='c'><circle r='1'/></clipPath></defs><g clip-path='url(#c)'>"
       "<circle r='1' clip-path='url(#c)'/></g>",
       "is clipped already"},
      {"<g>", "test.svg:3: "},
      {nested, "nested too deeply"},
  };
  for (const auto& [content, message] : cases) {
    SCOPED_TRACE(content);
    try {
      Read(content);
      ADD_FAILURE() << "was read";
    } catch (const std::runtime_error& error) {
      EXPECT_THAT(error.what(), HasSubstr(message));
      EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
    }
  }
  for (const char* document :
       {"", "<svg/>", "<svg xmlns='http://www.w3.org/2000/svg'/>",
        "<svg xmlns='http://www.w3.org/2000/svg' viewBox='1 0 2 2'/>",
        "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 2 2' width='4'/>",
        "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 2 2'><title>\xff</title></svg>"}) {
    EXPECT_THROW(readSvgPicture(document, "test.svg"), std::runtime_error) << document;
  }
}

}  // namespace
}  // namespace lumenquest::adapters
