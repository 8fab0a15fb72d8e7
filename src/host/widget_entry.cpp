#include "host/widget_entry.h"

#include "widgets/galactic_center/galactic_center_views.h"
#include "widgets/moon/moon_views.h"
#include "widgets/plans/plans_views.h"
#include "widgets/sun/sun_views.h"

namespace lumenquest::host {

namespace view = widgets::view;

namespace {

view::Element ViewOf(const widgets::SunTimelineEntry& entry, const view::Environment& e) {
  return widgets::SunLightWidgetEntryView(entry, e);
}
view::Element ViewOf(const widgets::MoonTimelineEntry& entry, const view::Environment& e) {
  return widgets::MoonWidgetEntryView(entry, e);
}
view::Element ViewOf(const widgets::GalacticCenterTimelineEntry& entry,
                     const view::Environment& e) {
  return widgets::GalacticCenterWidgetEntryView(entry, e);
}
view::Element ViewOf(const widgets::PlansTimelineEntry& entry, const view::Environment& e) {
  return widgets::PlansWidgetEntryView(entry, e);
}

}  // namespace

platform::NSDate dateOf(const AnyEntry& entry) {
  return std::visit([](const auto& kind) { return kind.date; }, entry);
}

std::optional<platform::NSDate> endOfDayShown(const AnyEntry& entry) {
  return std::visit(
      [](const auto& kind) -> std::optional<platform::NSDate> {
        if constexpr (requires { kind.data; }) {
          if (kind.data.mjdTomorrowAt0 > 0.0) {
            return platform::NSDate::dateFromModifiedJulianDay(kind.data.mjdTomorrowAt0);
          }
        }
        return std::nullopt;
      },
      entry);
}

view::Element viewOf(const AnyEntry& entry, view::Environment& environment) {
  return std::visit(
      [&](const auto& kind) {
        if (kind.theme == widgets::ThemeStyleEnum::themeDark) {
          environment.colorScheme = platform::ColorScheme::dark;
        } else if (kind.theme == widgets::ThemeStyleEnum::themeLight) {
          environment.colorScheme = platform::ColorScheme::light;
        }
        return ViewOf(kind, environment);
      },
      entry);
}

const char* nameOf(widgets::WidgetFamily family) {
  switch (family) {
    case widgets::WidgetFamily::systemSmall:
      return "systemSmall";
    case widgets::WidgetFamily::systemMedium:
      return "systemMedium";
    case widgets::WidgetFamily::systemLarge:
      break;
  }
  return "systemLarge";
}

const char* nameOf(widgets::ThemeStyleEnum theme) {
  switch (theme) {
    case widgets::ThemeStyleEnum::themeSystem:
      return "themeSystem";
    case widgets::ThemeStyleEnum::themeDark:
      return "themeDark";
    case widgets::ThemeStyleEnum::themeLight:
      break;
  }
  return "themeLight";
}

}  // namespace lumenquest::host
