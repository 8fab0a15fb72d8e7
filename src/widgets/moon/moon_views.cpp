#include "widgets/moon/moon_views.h"

#include <algorithm>
#include <cmath>

#include "ephemeris/constants.h"
#include "events/moon_shadow.h"
#include "platform/localized_strings.h"
#include "platform/services.h"
#include "widgets/deep_links.h"
#include "widgets/galactic_center/galactic_center_views.h"
#include "widgets/location/location_views.h"
#include "widgets/palette.h"
#include "widgets/view/style.h"

namespace lumenquest::widgets {

using namespace view;
using platform::CGAffineTransform;
using platform::CGPoint;
using platform::CGRect;
using platform::CGSize;
using platform::UIBezierPath;

UIBezierPath MoonShadowView::path(CGSize size) const {
  UIBezierPath path;
  if (phase >= 1.0f) return path;
  const double r = std::min(size.width, size.height) / 2.0;
  const CGPoint center{size.width / 2.0, size.height / 2.0};
  const double side = isMoonWaning ? -1.0 : 1.0;
  const double dark = 1.0 - static_cast<double>(phase);
  path.moveTo({center.x, center.y + r});
  for (int t = 90; t <= 269; ++t) {
    const double angle = t * ephemeris::kDegreesToRadians;
    // The chord is a single-precision number.
    const double chord =
        static_cast<double>(std::fabs(static_cast<float>(2.0 * r * std::cos(angle))));
    const double limb = chord / 2.0;
    const double terminator = limb - dark * chord;
    path.lineTo({center.x + side * std::min(limb, terminator), center.y + r * std::sin(angle)});
  }
  for (int t = 270; t <= 449; ++t) {
    const double angle = t * ephemeris::kDegreesToRadians;
    path.lineTo({center.x + r * side * std::cos(angle), center.y + r * std::sin(angle)});
  }
  path.close();
  return path;
}

platform::UIColor MoonShadowView::color() const {
  if (isTinted) return {0.0, 0.0, 0.0, 1.0};
  return platform::UIColor::interpolatedMoonShadowColor(
      events::MoonShadow::skyBrightness(static_cast<double>(sunElevation)));
}

namespace {

/// Turns about a point, clockwise, by degrees.
CGAffineTransform Turn(CGPoint center, double degrees) {
  return CGAffineTransform::translation(-center.x, -center.y)
      .then(CGAffineTransform::rotation(degrees * ephemeris::kDegreesToRadians))
      .then(CGAffineTransform::translation(center.x, center.y));
}

}  // namespace

void MoonShadowView::draw(platform::Canvas& canvas, CGSize size) const {
  const UIBezierPath shadow = path(size);
  if (shadow.segments().empty()) return;
  constexpr double kHalfTurn = 180.0;
  canvas.save();
  canvas.concatenate(
      Turn({size.width / 2.0, size.height / 2.0}, kHalfTurn + static_cast<double>(zenithAngle)));
  canvas.fill(shadow, color());
  canvas.restore();
}

Element MoonIconView(const MoonWidgetData& data, double size, const Environment& environment) {
  constexpr double kRing = 1.5;
  constexpr double kOutline = 0.5;
  const CGSize box{size, size};
  const CGRect whole{0.0, 0.0, size, size};
  // A supermoon's ring stands clear of the disc.
  const CGRect disc = data.isSupermoon ? whole.insetBy(2.0 * (kRing + kOutline)) : whole;
  platform::ImageContext context(box);
  context.save();
  context.clip(UIBezierPath::ellipse(disc));
  platform::AssetCatalog& assets = platform::Services::current().assets();
  if (auto moon = assets.imageNamed("moon")) {
    if (environment.isTinted()) {
      moon = std::make_shared<const platform::UIImage>(accentedStyle(*moon, environment.accent));
    }
    context.save();
    context.concatenate(Turn(whole.center(), static_cast<double>(data.zenithAngle)));
    context.embedImage(moon, disc, {});
    context.restore();
  }
  context.concatenate(CGAffineTransform::translation(disc.x, disc.y));
  const MoonShadowView shadow{data.moonPhase, data.zenithAngle, data.sunElevation,
                              data.isLimbWaning, environment.isTinted()};
  shadow.draw(context, {disc.width, disc.height});
  context.restore();
  if (!environment.isTinted()) {
    // So that the disc of a new Moon does not get lost in a dark panel.
    constexpr double kHairline = 0.5;
    constexpr platform::UIColor kRim{0.5, 0.5, 0.5, 0.45};
    context.stroke(UIBezierPath::ellipse(disc), kRim, {kHairline});
  }
  if (data.isSupermoon) {
    const UIBezierPath ring = UIBezierPath::ellipse(whole.insetBy(kOutline + kRing / 2.0));
    const auto outline = assets.colorNamed("contentTertiary", environment.colorScheme);
    // A light panel would swallow the yellow, as it would the Sun's.
    if (outline && !environment.isTinted()) {
      context.stroke(ring, *outline, {kRing + 2.0 * kOutline});
    }
    context.stroke(ring, environment.isTinted() ? environment.accent : palette::kLumenquestYellow,
                   {kRing});
  }
  const Element moon = picture(context.image(), size);
  const std::string supermoon =
      platform::localizedString("phase_supermoon", platform::kTableEphemeris);
  // A full Moon's phase says it already.
  const bool isSaid = data.moonPhaseString.find(supermoon) != std::string::npos;
  return data.isSupermoon && !isSaid ? moon | label(supermoon) : moon;
}

namespace {

/// On one line, or the name above the figures in parentheses, on two lines if it has to be.
Element Phase(const MoonContent& content) {
  const auto set = [](std::string words, int lines) {
    return text(std::move(words)) | font(kBody) | lineLimit(lines) | minScale(kLeastScale) |
           align(platform::TextAlignment::center);
  };
  const std::size_t blank = content.phase.rfind(" (");
  if (blank == std::string::npos) return set(content.phase, 2);
  const auto above = [&](int nameLines) {
    return vstack(
        {set(content.phase.substr(0, blank), nameLines), set(content.phase.substr(blank + 1), 1)});
  };
  return firstThatFits(Axis::horizontal, {set(content.phase, 1), above(1), above(2)});
}

Element MoonRiseSet(const MoonWidgetData& data) {
  return RiseSetView(data.mjdRise, data.mjdSet, data.mjdTomorrowAt0, data.locationData, kMoonNames);
}

}  // namespace

Element MoonInfoViewSmall(const MoonWidgetData& data, const Environment& environment) {
  const MoonContent content = moonContent(data, nullptr, WidgetFamily::systemSmall);
  const Element title = PostalAddressView(data.locationData) | fillWidth();
  const Element phase = Phase(content) | fillWidth(Alignment::center);
  const Element riseSet = MoonRiseSet(data) | fillWidth(Alignment::center);
  // The Moon is what people look for: lines stand closer before it shrinks, by small steps.
  constexpr double kDenseGap = 2.0;
  Elements forms;
  for (const double size : {62.0, 57.0, 52.0, 47.0, 42.0, 37.0, 31.0}) {
    const Element moon = MoonIconView(data, size, environment) | fillWidth(Alignment::center);
    for (const double gap : {kGap, kDenseGap}) {
      forms.push_back(
          vstack({title, spacer(), moon, spacer(), phase, riseSet}, gap, Alignment::start));
    }
  }
  return firstThatFits(Axis::vertical, std::move(forms));
}

Element MoonInfoViewMedium(const MoonWidgetData& data, const GalacticCenterWidgetData& gcData,
                           const Environment& environment) {
  constexpr double kMoon = 76.0;
  const MoonContent content = moonContent(data, &gcData, environment.family);
  // Or the Moon itself would seem to be meant.
  const Element window =
      vstack({caption(platform::localizedString("appwidget_milky_way", platform::kTableCommon)) |
                  fillWidth(),
              GCVisibilityView(*content.galacticCenter, environment.family)},
             kGap / 2.0, Alignment::start);
  const Element moon = vstack({MoonIconView(data, kMoon, environment), Phase(content)}, 1.5 * kGap);
  Elements lines;
  // In the large family the place's title stands above already.
  if (environment.family != WidgetFamily::systemLarge) {
    lines.push_back(PostalAddressView(data.locationData) | fillWidth());
  }
  lines.insert(lines.end(), {spacer(), window, spacer(), divider(), MoonRiseSet(data)});
  return pictureAndTable(moon, moon, vstack(std::move(lines), 1.5 * kGap, Alignment::start));
}

Element MoonWidgetEntryView(const MoonTimelineEntry& entry, const Environment& environment) {
  return chosenView(entry.data.locationData, environment,
                    [&] {
                      const bool isSmall = environment.family == WidgetFamily::systemSmall ||
                                           !entry.gcData.has_value();
                      return panel(isSmall
                                       ? MoonInfoViewSmall(entry.data, environment)
                                       : MoonInfoViewMedium(entry.data, *entry.gcData, environment),
                                   "backgroundPrimary", environment);
                    }) |
         link(kMoonLink);
}

}  // namespace lumenquest::widgets
