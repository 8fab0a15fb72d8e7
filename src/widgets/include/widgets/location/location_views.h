#pragma once

#include "widgets/location/location_widget_data.h"
#include "widgets/location/rise_set_content.h"
#include "widgets/view/element.h"
#include "widgets/view/environment.h"

namespace lumenquest::widgets {

// The views that the widgets of the sky have in common.

/// In place of everything else when the user has refused his location.
view::Element LocationServicesDisabledView();
/// ... and when there is none.
view::Element LocationTimeOutView();

/// The place's title, marked when it is wherever the device is.
view::Element PostalAddressView(const LocationWidgetData& data);

/// A body in words, as keys: its own name in the table "Common", its events' in "Ephemeris".
struct BodyNames {
  const char* body;
  const char* rise;
  const char* set;
};
inline constexpr BodyNames kSunNames{"appwidget_sun", "event_sunrise", "event_sunset"};
inline constexpr BodyNames kMoonNames{"appwidget_moon", "event_moonrise", "event_moonset"};

/// A body's rise and set beside each other, or where that is too wide below each other, or a
/// sentence.
view::Element RiseSetView(double mjdRise, double mjdSet, double mjdTomorrowAt0,
                          const LocationWidgetData& data, const BodyNames& names);
view::Element BodyRiseSetTimeView(const BodyRiseSetTime& time, double size, const BodyNames& names);

/// One of the two failure views, or the information.
view::Element chosenView(const LocationWidgetData& data, const view::Environment& environment,
                         const std::function<view::Element()>& information);

}  // namespace lumenquest::widgets
