// The Moon as it is drawn, by the image (MoonShadow) and by the view (MoonShadowView).

#include "events/moon_shadow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "ephemeris/constants.h"
#include "ephemeris/pt_moon.h"
#include "ephemeris/pt_sun.h"
#include "events/ephemeris_utils.h"
#include "fake_views.h"
#include "test_services.h"
#include "widgets/moon/moon_views.h"
#include "widgets/palette.h"

namespace lumenquest::widgets {
namespace {

using ephemeris::kDegreesToRadians;
using ephemeris::kRadiansToDegrees;
using events::MoonShadow;
using platform::CGPoint;
using platform::CGSize;
using platform::UIBezierPath;
using platform::UIColor;
using platform::UIImage;
using testing::Instant;
using testing::TestServices;

constexpr double kSide = 200.0;
constexpr int kWaxing = 4;
constexpr int kWaning = 7;

/// A cubic curve's point, t from 0 to 1.
CGPoint OnCurve(CGPoint from, const UIBezierPath::Segment& curve, double t) {
  const CGPoint &c1 = curve.points[0], &c2 = curve.points[1], &to = curve.points[2];
  const double u = 1.0 - t;
  const auto mix = [&](double p0, double p1, double p2, double p3) {
    return u * u * u * p0 + 3.0 * u * u * t * p1 + 3.0 * u * t * t * p2 + t * t * t * p3;
  };
  return {mix(from.x, c1.x, c2.x, to.x), mix(from.y, c1.y, c2.y, to.y)};
}

/// Where a path crosses a row.
std::vector<double> Crossings(const UIBezierPath& path, double y) {
  std::vector<CGPoint> corners;
  for (const auto& segment : path.segments()) {
    if (segment.verb == UIBezierPath::Verb::close) continue;
    if (segment.verb == UIBezierPath::Verb::curve) {
      const CGPoint from = corners.back();
      for (int i = 1; i < 100; ++i) corners.push_back(OnCurve(from, segment, i / 100.0));
    }
    corners.push_back(segment.end());
  }
  std::vector<double> crossings;
  for (std::size_t i = 0, j = corners.size() - 1; i < corners.size(); j = i++) {
    const CGPoint &a = corners[i], &b = corners[j];
    if ((a.y > y) == (b.y > y)) continue;
    crossings.push_back((b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x);
  }
  return crossings;
}

/// What is filled, be it by a clipped shape or not; null when nothing is.
const platform::PictureShape* Shadow(const UIImage& image) {
  for (const auto& shape : image.shapes) {
    if (shape.fill) return &shape;
  }
  return nullptr;
}

/// What is not in shadow.
struct Lit {
  /// Of the disc.
  double part;
  /// Where the middle of the bright limb stands, degrees from the top, counter-clockwise: the lit
  /// part is the same on both sides of the line to it, and lies towards it.
  double limb;
};

/// Row by row.
Lit LitPart(const UIImage& image) {
  double all = 0.0, dark = 0.0, darkRight = 0.0, darkUp = 0.0;
  const auto* const shadow = Shadow(image);
  const double side = image.size.width;
  const double radius = side / 2.0;
  for (double y = side / 800.0; y < side; y += side / 400.0) {
    const double half = std::sqrt(radius * radius - (y - radius) * (y - radius));
    all += 2.0 * half;
    if (shadow == nullptr) continue;
    std::vector<double> crossings = Crossings(shadow->path, y);
    for (double& x : crossings) x = std::clamp(x, radius - half, radius + half);
    std::sort(crossings.begin(), crossings.end());
    for (std::size_t i = 1; i < crossings.size(); i += 2) {
      const double width = crossings[i] - crossings[i - 1];
      dark += width;
      darkRight += width * ((crossings[i] + crossings[i - 1]) / 2.0 - radius);
      darkUp += width * (radius - y);
    }
  }
  return {1.0 - dark / all, std::atan2(darkRight, -darkUp) * kRadiansToDegrees};
}

double Apart(double a, double b) { return std::fabs(std::remainder(a - b, 360.0)); }

/// Radians, as a MoonPhaseResult has it.
struct Look {
  double illumination = 0.5;
  double zenithAngle = 0.0;
  bool isWaning = false;
};

double BrightLimbZenithAngle(ephemeris::PtSun& sun, ephemeris::PtMoon& moon) {
  ephemeris::MoonPhase phase;
  ephemeris::Vector3D moonEcliptic = moon.eclipticPosition();
  ephemeris::Vector3D moonEquatorial = moon.equatorialPosition();
  ephemeris::Vector3D sunEcliptic = sun.eclipticPosition();
  ephemeris::Vector3D sunEquatorial = sun.equatorialPosition();
  moon.CalculatePhase(&moonEcliptic, &moonEquatorial, &sunEcliptic, &sunEquatorial,
                      moon.hourAngle(), &phase);
  return phase.brightLimbZenithAngle * kRadiansToDegrees;
}

ephemeris::PtPosition Observer(double latitude, double longitude) {
  ephemeris::PtPosition observer;
  observer.latitude = latitude;
  observer.longitude = longitude;
  observer.CalcObserverCoords();
  return observer;
}

UIImage ByImage(const Look& look, double side = kSide) {
  return MoonShadow::moonShadowImageOfSize({side, side}, look.zenithAngle,
                                           look.isWaning ? kWaning : kWaxing, 30.0,
                                           look.illumination, -1.0, false);
}

UIImage ByView(const Look& look, double side = kSide) {
  const MoonShadowView view{static_cast<float>(look.illumination),
                            static_cast<float>(look.zenithAngle * kRadiansToDegrees), 30.0f,
                            look.isWaning, false};
  platform::ImageContext context({side, side});
  view.draw(context, {side, side});
  return context.image();
}

struct Route {
  const char* name;
  UIImage (*draw)(const Look&, double side);
};
const Route kRoutes[] = {{"image", ByImage}, {"view", ByView}};

TEST(MoonShadow, TheLimbShinesTowardsTheSun) {
  const TestServices services("2027-01-01T00:00:00Z");
  constexpr double kDeltaT = 70.0 / 86400.0;
  int waxing = 0, waning = 0;
  for (const auto& [latitude, longitude] :
       {std::pair(46.36, 14.09), {-22.91, -68.2}, {1.0, 103.8}, {-54.8, -68.3}}) {
    const ephemeris::PtPosition observer = Observer(latitude, longitude);
    ephemeris::PtSun sun(observer);
    ephemeris::PtMoon moon(observer);
    for (double days = 0.0; days < 30.0; days += 0.37) {
      const double mjd = Instant("2027-02-06T16:00:00Z").modifiedJulianDay() + days;
      const auto result = events::EphemerisUtils::moonPhaseDataForMjd(
          mjd, kDeltaT, sun, moon, Instant("2027-02-06T16:00:00Z"), false);
      // Near new and full Moon the whole limb is dark, or lit.
      if (result.phaseIllumination < 0.03f || result.phaseIllumination > 0.97f) continue;
      const double expected = BrightLimbZenithAngle(sun, moon);
      SCOPED_TRACE(std::to_string(latitude) + " day " + std::to_string(days));

      // The angle itself: the great circle from Moon to Sun in the observer's sky. Parallax and
      // refraction bend it by a few degrees at most while the two are well apart.
      const double moonHeight = result.moonElevation * kDegreesToRadians;
      const double sunHeight = result.sunElevation * kDegreesToRadians;
      const double azimuth =
          (sun.horizontalPosition().phi - moon.horizontalPosition().phi) * kDegreesToRadians;
      const double clockwise =
          std::atan2(std::sin(azimuth) * std::cos(sunHeight),
                     std::sin(sunHeight) * std::cos(moonHeight) -
                         std::cos(sunHeight) * std::sin(moonHeight) * std::cos(azimuth));
      if (result.moonElevation < 80.0f) {
        EXPECT_LT(Apart(expected, -clockwise * kRadiansToDegrees), 6.0);
      }

      const Look look{result.phaseIllumination, result.zenithAngle, result.isWaning()};
      for (const Route& route : kRoutes) {
        EXPECT_LT(Apart(LitPart(route.draw(look, kSide)).limb, expected), 2.0) << route.name;
      }
      ++(look.isWaning ? waning : waxing);
    }
  }
  EXPECT_GT(waning, 80);
  EXPECT_GT(waxing, 80);
}

TEST(MoonShadow, TheDarkSideIsRightOnTheWholeDayOfFullAndNewMoon) {
  constexpr double kDeltaT = 70.0 / 86400.0;
  // Before and after full Moon on 2027-02-20 at 23:24 UTC and new Moon on 2027-01-07 at 20:24 UTC.
  const struct {
    const char* zone;
    double latitude, longitude;
    const char* instant;
    bool isLimbWaning;
  } cases[] = {
      {"Europe/London", 51.48, 0.0, "2027-02-20T02:00:00Z", false},
      {"Europe/Ljubljana", 46.3625, 14.0936, "2027-02-21T20:00:00Z", true},
      {"Asia/Tehran", 35.69, 51.42, "2027-01-07T03:30:00Z", true},
      {"America/Santiago", -22.91, -68.2, "2027-01-08T02:30:00Z", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.instant);
    const TestServices services(c.instant, c.zone);
    const ephemeris::PtPosition observer = Observer(c.latitude, c.longitude);
    ephemeris::PtSun sun(observer);
    ephemeris::PtMoon moon(observer);
    const platform::NSDate now = Instant(c.instant);
    const auto result = events::EphemerisUtils::moonPhaseDataForMjd(now.modifiedJulianDay(),
                                                                    kDeltaT, sun, moon, now);
    EXPECT_EQ(result.isLimbWaning, c.isLimbWaning);
    const UIImage byImage =
        MoonShadow::moonShadowImageOfSize({kSide, kSide}, result.zenithAngle, result.shadowPhase(),
                                          30.0, result.phaseIllumination, -1.0, false);
    const UIImage byView =
        ByView({result.phaseIllumination, result.zenithAngle, result.isLimbWaning});
    for (const UIImage& image : {byImage, byView}) {
      EXPECT_LT(Apart(LitPart(image).limb, BrightLimbZenithAngle(sun, moon)), 20.0);
    }
  }
}

TEST(MoonShadow, TheLitAreaIsTheIlluminatedFraction) {
  for (int i = 1; i <= 200; ++i) {
    for (const bool isWaning : {false, true}) {
      const Look look{i / 201.0, 0.03 * i, isWaning};
      for (const Route& route : kRoutes) {
        for (const double side : {31.0, 99.0, 400.0}) {
          EXPECT_NEAR(LitPart(route.draw(look, side)).part, look.illumination, 0.003)
              << route.name << ' ' << side;
        }
      }
    }
  }
}

TEST(MoonShadow, NothingAtFullMoonAllAtNewMoon) {
  for (const Route& route : kRoutes) {
    for (const bool isWaning : {false, true}) {
      EXPECT_EQ(Shadow(route.draw({1.0, 0.4, isWaning}, kSide)), nullptr) << route.name;
      // Up to the chords by which the limb is drawn.
      EXPECT_LT(LitPart(route.draw({0.0, 0.4, isWaning}, 31.0)).part, 1e-3) << route.name;
    }
  }
}

TEST(MoonShadow, TheViewsPathIsInItsOwnBox) {
  const MoonShadowView half{0.5f, 77.0f, 0.0f, true, false};
  const UIBezierPath path = half.path({40.0, 60.0});
  ASSERT_EQ(path.segments().size(), 1u + 180u + 180u + 1u);
  const auto at = [&](std::size_t n) { return path.segments()[n].end(); };
  // From below, along the terminator (upright at a half Moon) up, and back along the waning Moon's
  // side.
  EXPECT_EQ(at(0), (CGPoint{20.0, 50.0}));
  for (std::size_t n = 1; n <= 180; ++n) ASSERT_NEAR(at(n).x, 20.0, 1e-4) << n;
  EXPECT_NEAR(at(91).y, 30.0, 1e-9);
  EXPECT_NEAR(at(181).y, 10.0, 1e-9);
  EXPECT_NEAR(at(271).x, 0.0, 1e-9);
}

TEST(MoonShadow, ItsColourIsTheSky) {
  const auto day = platform::kDaySkyColor.toHSBA();
  for (const auto& [elevation, brightness] : {std::pair(90.0f, 1.0),
                                              {4.0f, 1.0},
                                              {0.0f, 0.5},
                                              {-2.0f, 0.25},
                                              {-4.0f, 0.0},
                                              {-10.0f, 0.0}}) {
    const UIColor color = MoonShadowView{0.5f, 0.0f, elevation, false, false}.color();
    const auto hsba = color.toHSBA();
    EXPECT_NEAR(hsba.brightness, brightness * day.brightness, 1e-6) << elevation;
    EXPECT_EQ(color.alpha, 1.0);
    if (brightness > 0.0) {
      EXPECT_NEAR(hsba.hue, day.hue, 1e-6);
      EXPECT_NEAR(hsba.saturation, day.saturation, 1e-6);
    }
    const UIImage image = MoonShadow::moonShadowImageOfSize(
        {50.0, 50.0}, 0.0, kWaxing, static_cast<double>(elevation), 0.5, -1.0, false);
    EXPECT_EQ(std::get<UIColor>(*Shadow(image)->fill), color) << elevation;
  }
  EXPECT_EQ((MoonShadowView{0.5f, 0.0f, 90.0f, false, true}.color()), (UIColor{0, 0, 0, 1}));
}

/// The parts of a picture that are lines.
std::vector<platform::PictureShape> Strokes(const UIImage& image) {
  std::vector<platform::PictureShape> strokes;
  for (const auto& shape : image.shapes) {
    if (shape.strokePaint) strokes.push_back(shape);
  }
  return strokes;
}

TEST(MoonShadow, ASupermoonHasARing) {
  UIImage moon{{60.0, 60.0}, {}};
  moon.shapes.push_back({UIBezierPath::rect({0, 0, 60, 60}), UIColor{0.5, 0.5, 0.5, 1.0}});
  EXPECT_TRUE(Strokes(MoonShadow::drawShadowOnMoonImage(moon, 0.0, 2, 30.0, 1.0, false)).empty());
  const auto ring = Strokes(MoonShadow::drawShadowOnMoonImage(moon, 0.0, 2, 30.0, 1.0, true));
  ASSERT_FALSE(ring.empty());
  EXPECT_EQ(ring.back().path, UIBezierPath::ellipse({1.0, 1.0, 58.0, 58.0}));

  platform::Services::Adapters adapters;
  const auto assets = std::make_shared<testing::FewAssets>();
  assets->images["moon"] = std::make_shared<UIImage>(moon);
  adapters.assets = assets;
  const TestServices services("2027-01-01T00:00:00Z", "UTC", "en", std::move(adapters));
  MoonWidgetData data;
  data.moonPhaseString = "<phase_supermoon>";  // says it, so that the picture needs no label
  const auto colors = [&](bool isSupermoon, const view::Environment& environment) {
    data.isSupermoon = isSupermoon;
    const view::Element element = MoonIconView(data, kSide, environment);
    const auto* const label = std::get_if<view::Label>(&element.node());
    const view::Element& icon = label == nullptr ? element : label->child;
    std::vector<UIColor> found;
    for (const auto& line : Strokes(*std::get<view::Picture>(icon.node()).image)) {
      found.push_back(std::get<UIColor>(*line.strokePaint));
    }
    return found;
  };
  view::Environment environment;
  EXPECT_EQ(colors(false, environment).size(), 1u);  // the disc's rim
  EXPECT_EQ(colors(true, environment).back(), palette::kLumenquestYellow);
  environment.renderingMode = view::WidgetRenderingMode::accented;
  EXPECT_EQ(colors(true, environment), std::vector{environment.accent});
}

}  // namespace
}  // namespace lumenquest::widgets
