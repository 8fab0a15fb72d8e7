#include "app/record_fields.h"

#include <charconv>
#include <cmath>
#include <iterator>

#include "adapters/rfc3339.h"

namespace lumenquest::app {

namespace {

using Json = nlohmann::ordered_json;

/// A float by the digits that tell it from its neighbours, not by those of the double it widens to.
Json Number(float value) {
  if (!std::isfinite(value)) return nullptr;
  char digits[32];
  const auto written = std::to_chars(std::begin(digits), std::end(digits), value);
  double number = 0.0;
  std::from_chars(digits, written.ptr, number);
  return number;
}

Json Text(const std::optional<std::string>& text) { return text ? Json(*text) : Json(nullptr); }

Json Date(const std::optional<platform::NSDate>& date) {
  return date ? Json(adapters::formatRfc3339(*date)) : Json(nullptr);
}

Json Zone(const std::optional<platform::NSTimeZone>& zone) {
  return zone ? Json(zone->name) : Json(nullptr);
}

}  // namespace

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

RecordFields fieldsOf(const widgets::LocationWidgetData& data) {
  return {{"address", Text(data.address)},
          {"authorizationStatus", static_cast<int>(data.authorizationStatus)},
          {"isCurrentLocation", data.isCurrentLocation},
          {"withError", data.withError},
          {"timeZone", Zone(data.timeZone)}};
}

RecordFields fieldsOf(const widgets::SunLightWidgetData& data) {
  return {{"mjdTomorrowAt0", data.mjdTomorrowAt0, true},
          {"mjdRise", data.mjdRise, true},
          {"mjdSet", data.mjdSet, true},
          {"sunElevation", Number(data.sunElevation)},
          {"lightType", data.lightType},
          {"nextEventMjd", data.nextEventMjd, true},
          {"goldenHourInterval", data.goldenHourInterval},
          {"blueHourInterval", data.blueHourInterval},
          {"astronomicalTwilightInterval", data.astronomicalTwilightInterval},
          {"nextEventName", data.nextEventName}};
}

RecordFields fieldsOf(const widgets::MoonWidgetData& data) {
  return {{"mjdTomorrowAt0", data.mjdTomorrowAt0, true},
          {"mjdRise", data.mjdRise, true},
          {"mjdSet", data.mjdSet, true},
          {"moonPhaseString", data.moonPhaseString},
          {"moonPhase", Number(data.moonPhase)},
          {"zenithAngle", Number(data.zenithAngle)},
          {"isMoonWaning", data.isMoonWaning},
          {"isSupermoon", data.isSupermoon},
          {"moonElevation", Number(data.moonElevation)},
          {"sunElevation", Number(data.sunElevation)}};
}

RecordFields fieldsOf(const widgets::GalacticCenterWidgetData& data) {
  return {{"mjdTomorrowAt0", data.mjdTomorrowAt0, true},
          {"mjdVisibilityFrom", data.mjdVisibilityFrom, true},
          {"visibilityFromAngle", data.visibilityFromAngle},
          {"mjdVisibilityTo", data.mjdVisibilityTo, true},
          {"visibilityToAngle", data.visibilityToAngle},
          {"moonlessHours", Number(data.moonlessHours)},
          {"dateNextVisibility", Date(data.dateNextVisibility)},
          {"visibilityFromAzimuth", data.visibilityFromAzimuth},
          {"visibilityToAzimuth", data.visibilityToAzimuth}};
}

RecordFields fieldsOf(const widgets::PlanItem& plan) {
  return {{"name", Text(plan.name)},
          {"date", Date(plan.date)},
          {"timeZone", Zone(plan.timeZone)},
          {"objectId", plan.objectId}};
}

}  // namespace lumenquest::app
