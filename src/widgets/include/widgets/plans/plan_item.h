#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/ns_date.h"
#include "platform/ns_time_zone.h"
#include "widgets/intents/theme_style_enum.h"
#include "widgets/widget_kit.h"

namespace lumenquest::widgets {

/// A plan as the widget shows it.
struct PlanItem {
  std::optional<std::string> name;
  std::optional<platform::NSDate> date;
  /// Absent when the plan's identifier names no zone.
  std::optional<platform::NSTimeZone> timeZone;
  /// The stored object's identifier as it stands in a link; empty in samples.
  std::string objectId;

  bool operator==(const PlanItem&) const = default;
};

/// Text with every byte that a URL's host may not hold as %XX.
std::string percentEncodedForUrlHost(const std::string& text);

/// Date and time in the plan's zone (else the device's); "--" without a date.
std::string planDateText(const PlanItem& plan);

struct PlansTimelineEntry {
  platform::NSDate date;
  /// In order of date, four at most.
  std::vector<PlanItem> plans;
  ThemeStyleEnum theme = ThemeStyleEnum::themeSystem;
};

/// One line of the list.
struct PlanRow {
  std::string name;
  std::string date;
  /// In the medium family alone.
  std::string link;
};

/// What the plans' views show.
struct PlansContent {
  std::string title;
  /// In place of the columns when there are no plans.
  std::string nothingScheduled;
  /// One of two rows in the small family, two of two in the medium one.
  std::vector<std::vector<PlanRow>> columns;
};

PlansContent plansContent(const PlansTimelineEntry& entry, WidgetFamily family);

}  // namespace lumenquest::widgets

template <>
struct std::hash<lumenquest::widgets::PlanItem> {
  std::size_t operator()(const lumenquest::widgets::PlanItem& plan) const;
};
