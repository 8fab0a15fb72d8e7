#include "platform/ui_color.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace lumenquest::platform {
namespace {

void ExpectNear(const UIColor& a, const UIColor& b) {
  EXPECT_NEAR(a.red, b.red, 1e-14);
  EXPECT_NEAR(a.green, b.green, 1e-14);
  EXPECT_NEAR(a.blue, b.blue, 1e-14);
  EXPECT_NEAR(a.alpha, b.alpha, 1e-14);
}

TEST(UIColor, HueSaturationBrightness) {
  const std::pair<UIColor, UIColor::HSBA> cases[] = {
      {{1.0, 0.0, 0.0, 1.0}, {0.0, 1.0, 1.0, 1.0}},
      {{0.0, 1.0, 0.0, 0.5}, {1.0 / 3.0, 1.0, 1.0, 0.5}},
      {{0.0, 0.5, 0.5, 1.0}, {0.5, 1.0, 0.5, 1.0}},
      {{0.25, 0.25, 0.5, 1.0}, {2.0 / 3.0, 0.5, 0.5, 1.0}},
      {{1.0, 0.0, 1.0, 1.0}, {5.0 / 6.0, 1.0, 1.0, 1.0}},
      {{0.25, 0.25, 0.25, 1.0}, {0.0, 0.0, 0.25, 1.0}},
      {{0.0, 0.0, 0.0, 0.0}, {0.0, 0.0, 0.0, 0.0}},
  };
  for (const auto& [color, expected] : cases) {
    const UIColor::HSBA hsba = color.toHSBA();
    EXPECT_DOUBLE_EQ(hsba.hue, expected.hue);
    EXPECT_DOUBLE_EQ(hsba.saturation, expected.saturation);
    EXPECT_DOUBLE_EQ(hsba.brightness, expected.brightness);
    EXPECT_DOUBLE_EQ(hsba.alpha, expected.alpha);
  }
  for (int rgb = 0; rgb < 16 * 16 * 16; ++rgb) {
    const UIColor color{rgb % 16 / 15.0, rgb / 16 % 16 / 15.0, rgb / 256 / 15.0, 0.3};
    ExpectNear(UIColor::fromHSBA(color.toHSBA()), color);
  }
}

TEST(UIColor, WhatCannotBeConverted) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double bad : {double{NAN}, infinity, -infinity, 1.01, -0.01}) {
    for (int component = 0; component < 4; ++component) {
      double parts[] = {0.2, 0.4, 0.6, 0.8};
      parts[component] = bad;
      const UIColor color{parts[0], parts[1], parts[2], parts[3]};
      EXPECT_EQ(color.toHSBA(), (UIColor::HSBA{0.0, 0.0, 0.0, 0.0})) << bad << " " << component;
    }
  }
  // The way back always gives a colour.
  EXPECT_EQ(UIColor::fromHSBA({-2.0 / 3.0, 7.0, 1.5, 2.0}), (UIColor{0.0, 1.0, 0.0, 1.0}));
  EXPECT_EQ(UIColor::fromHSBA({-1e-20, 1.0, 1.0, 1.0}), (UIColor{1.0, 0.0, 0.0, 1.0}));
  EXPECT_EQ(UIColor::fromHSBA({NAN, infinity, 0.5, NAN}), (UIColor{0.5, 0.5, 0.5, 0.0}));
}

}  // namespace
}  // namespace lumenquest::platform
