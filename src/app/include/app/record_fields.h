#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "widgets/galactic_center/galactic_center_widget_data.h"
#include "widgets/moon/moon_widget_data.h"
#include "widgets/plans/plan_item.h"
#include "widgets/sun/sun_light_widget_data.h"

namespace lumenquest::app {

/// A field of a widget's record, under its own name.
struct RecordField {
  const char* name;
  nlohmann::ordered_json value;
  /// An MJD (UT), or one of the special values.
  bool isInstant = false;
};
using RecordFields = std::vector<RecordField>;

RecordFields fieldsOf(const widgets::LocationWidgetData& data);

// Without the location part, which is a record of its own.

RecordFields fieldsOf(const widgets::SunLightWidgetData& data);
RecordFields fieldsOf(const widgets::MoonWidgetData& data);
RecordFields fieldsOf(const widgets::GalacticCenterWidgetData& data);
RecordFields fieldsOf(const widgets::PlanItem& plan);

/// "themeDark"
const char* nameOf(widgets::ThemeStyleEnum theme);

}  // namespace lumenquest::app
