#pragma once

#include <optional>
#include <string>
#include <variant>

#include "widgets/galactic_center/galactic_center_provider.h"
#include "widgets/moon/moon_provider.h"
#include "widgets/plans/plans_provider.h"
#include "widgets/sun/sun_provider.h"
#include "widgets/view/element.h"
#include "widgets/view/environment.h"

namespace lumenquest::host {

/// The entry of any widget.
using AnyEntry = std::variant<widgets::SunTimelineEntry, widgets::MoonTimelineEntry,
                              widgets::GalacticCenterTimelineEntry, widgets::PlansTimelineEntry>;

/// From when on it is shown.
platform::NSDate dateOf(const AnyEntry& entry);

/// The midnight at which the day that it tells of ends, in its place's zone; absent for plans and
/// where there is no place.
std::optional<platform::NSDate> endOfDayShown(const AnyEntry& entry);

/// The view of an entry. Its theme decides the colour scheme where it does not follow the host's.
widgets::view::Element viewOf(const AnyEntry& entry, widgets::view::Environment& environment);

/// "systemSmall"
const char* nameOf(widgets::WidgetFamily family);
/// "themeDark"
const char* nameOf(widgets::ThemeStyleEnum theme);

}  // namespace lumenquest::host
