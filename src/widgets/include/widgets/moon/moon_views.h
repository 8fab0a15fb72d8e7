#pragma once

#include "widgets/moon/moon_content.h"
#include "widgets/moon/moon_provider.h"
#include "widgets/view/element.h"
#include "widgets/view/environment.h"

namespace lumenquest::widgets {

// The views of the Moon widgets, from the outside in.

view::Element MoonWidgetEntryView(const MoonTimelineEntry& entry,
                                  const view::Environment& environment);
view::Element MoonInfoViewSmall(const MoonWidgetData& data, const view::Environment& environment);
/// In the large family, of the Sun widget, with the moonless hours.
view::Element MoonInfoViewMedium(const MoonWidgetData& data, const GalacticCenterWidgetData& gcData,
                                 const view::Environment& environment);

/// The Moon with its shadow, turned as it stands in the sky; a ring round a supermoon.
view::Element MoonIconView(const MoonWidgetData& data, double size,
                           const view::Environment& environment);

/// The unlit part of the Moon.
struct MoonShadowView {
  /// The illuminated fraction, 0 to 1.
  float phase = 0.0f;
  /// A MoonWidgetData's, degrees.
  float zenithAngle = 0.0f;
  /// Degrees.
  float sunElevation = 0.0f;
  bool isMoonWaning = false;
  bool isTinted = false;

  /// In a box of this size, before it is turned; empty for a full Moon.
  platform::UIBezierPath path(platform::CGSize size) const;
  platform::UIColor color() const;
  /// Turned about the box's centre.
  void draw(platform::Canvas& canvas, platform::CGSize size) const;
};

}  // namespace lumenquest::widgets
