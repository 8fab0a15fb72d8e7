#include <nlohmann/json.hpp>
#include <optional>

#include "adapters/rfc3339.h"
#include "app/today_command.h"

namespace lumenquest::app {

namespace {

using Json = nlohmann::ordered_json;

Json ToJson(const std::optional<std::string>& text) { return text ? Json(*text) : Json(nullptr); }

Json ToJson(const std::optional<platform::NSDate>& date) {
  return date ? Json(adapters::formatRfc3339(*date)) : Json(nullptr);
}

Json ToJson(const platform::CLLocation& location) {
  return {{"latitude", location.coordinate.latitude}, {"longitude", location.coordinate.longitude}};
}

Json ValuesJson(const events::WidgetAstrolib& values) {
  Json json;
  json["mjdTodayAt0"] = values.mjdTodayAt0;
  json["mjdTomorrowAt0"] = values.mjdTomorrowAt0;
  json["currentLocation"] =
      values.currentLocation() ? ToJson(*values.currentLocation()) : Json(nullptr);
  json["currentTimeZone"] =
      values.currentTimeZone ? Json(values.currentTimeZone->name) : Json(nullptr);
  json["mjdSunRise"] = values.mjdSunRise;
  json["mjdSunSet"] = values.mjdSunSet;
  json["currentLightType"] = values.currentLightType;
  json["nextEventMjd"] = values.nextEventMjd;
  json["nextEventName"] = ToJson(values.nextEventName);
  json["goldenHourInterval"] = ToJson(values.goldenHourInterval);
  json["blueHourInterval"] = ToJson(values.blueHourInterval);
  json["astronomicalTwilightInterval"] = ToJson(values.astronomicalTwilightInterval);
  json["mjdMoonRise"] = values.mjdMoonRise;
  json["mjdMoonSet"] = values.mjdMoonSet;
  json["moonPhase"] = ToJson(values.moonPhase);
  json["phaseIllumination"] = values.phaseIllumination;
  json["zenithAngle"] = values.zenithAngle;
  json["moonElevation"] = values.moonElevation;
  json["sunElevation"] = values.sunElevation;
  json["isMoonWaning"] = values.isMoonWaning;
  json["isSupermoon"] = values.isSupermoon;
  json["mjdGcVisibilityStart"] = values.mjdGcVisibilityStart;
  json["mjdGcVisibilityEnd"] = values.mjdGcVisibilityEnd;
  json["gcVisibilityStartAngle"] = values.gcVisibilityStartAngle;
  json["gcVisibilityEndAngle"] = values.gcVisibilityEndAngle;
  json["moonlessHours"] = values.moonlessHours;
  json["dateNextVisiblity"] = ToJson(values.dateNextVisiblity);
  return json;
}

}  // namespace

std::string todayJson(const TodayReport& report) {
  Json json;
  json["location"] = ToJson(report.location);
  json["location"]["timeZone"] = report.timeZone.name;
  json["instant"] = adapters::formatRfc3339(report.instant);
  json["values"] = ValuesJson(report.values);
  json["dateNextVisiblity"] = ToJson(report.dateNextVisiblity);
  return json.dump(2) + "\n";
}

}  // namespace lumenquest::app
