#include "host/entry_json.h"

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <type_traits>

#include "host/record_fields.h"

namespace lumenquest::host {

namespace {

using Json = nlohmann::json;
using platform::NSDate;
using platform::NSTimeZone;

/// Numbers that JSON does not know.
constexpr const char* kNotANumber = "nan";

// A value for each type of field; the library writes doubles by their shortest digits.

Json Write(double value) { return std::isfinite(value) ? Json(value) : Json(kNotANumber); }
Json Write(float value) { return Write(static_cast<double>(value)); }
Json Write(bool value) { return value; }
Json Write(const std::string& value) { return value; }
Json Write(NSDate value) { return Write(value.timeIntervalSinceReferenceDate()); }
Json Write(const NSTimeZone& value) { return value.name; }
Json Write(platform::CLAuthorizationStatus value) { return static_cast<int>(value); }
Json Write(widgets::ThemeStyleEnum value) { return static_cast<int>(value); }

void Read(const Json& json, double& value) {
  value = json == kNotANumber ? std::numeric_limits<double>::quiet_NaN() : json.get<double>();
}
void Read(const Json& json, float& value) {
  double number = 0.0;
  Read(json, number);
  value = static_cast<float>(number);
}
void Read(const Json& json, bool& value) { value = json.get<bool>(); }
void Read(const Json& json, std::string& value) { value = json.get<std::string>(); }
void Read(const Json& json, NSDate& value) { value = NSDate(json.get<double>()); }
void Read(const Json& json, NSTimeZone& value) { value.name = json.get<std::string>(); }
void Read(const Json& json, platform::CLAuthorizationStatus& value) {
  value = static_cast<platform::CLAuthorizationStatus>(json.get<int>());
}
void Read(const Json& json, widgets::ThemeStyleEnum& value) {
  value = static_cast<widgets::ThemeStyleEnum>(json.get<int>());
}

// A record is the object of its fields; one of the sky holds its location part as well.

template <typename Record>
concept Visitable = requires(Record& record) {
  visitFields(record, [](auto&&...) {});
};
template <typename Record>
concept HasLocation = requires(Record& record) {
  record.locationData;
};

template <Visitable Record>
Json Write(const Record& record);
template <Visitable Record>
void Read(const Json& json, Record& record);

template <typename Value>
Json Write(const std::optional<Value>& value) {
  return value ? Write(*value) : Json(nullptr);
}
template <typename Value>
void Read(const Json& json, std::optional<Value>& value) {
  value.reset();
  if (!json.is_null()) Read(json, value.emplace());
}

template <Visitable Record>
Json Write(const Record& record) {
  Json json = Json::object();
  visitFields(record,
              [&](const char* name, const auto& field, auto...) { json[name] = Write(field); });
  if constexpr (HasLocation<Record>) json["locationData"] = Write(record.locationData);
  return json;
}

template <Visitable Record>
void Read(const Json& json, Record& record) {
  visitFields(record, [&](const char* name, auto& field, auto...) { Read(json.at(name), field); });
  if constexpr (HasLocation<Record>) Read(json.at("locationData"), record.locationData);
}

template <typename Entry>
inline constexpr bool kIsOfPlans = std::is_same_v<Entry, widgets::PlansTimelineEntry>;

template <typename Entry>
Json WriteEntry(const Entry& entry) {
  Json json{{"date", Write(entry.date)}, {"theme", Write(entry.theme)}};
  if constexpr (kIsOfPlans<Entry>) {
    json["plans"] = Json::array();
    for (const widgets::PlanItem& plan : entry.plans) json["plans"].push_back(Write(plan));
  } else {
    visitRecords(entry, [&](const char* name, const auto& record) { json[name] = Write(record); });
  }
  return json;
}

template <typename Entry>
Entry ReadEntry(const Json& json) {
  Entry entry;
  Read(json.at("date"), entry.date);
  Read(json.at("theme"), entry.theme);
  if constexpr (kIsOfPlans<Entry>) {
    for (const Json& plan : json.at("plans")) Read(plan, entry.plans.emplace_back());
  } else {
    visitRecords(entry, [&](const char* name, auto& record) { Read(json.at(name), record); });
  }
  return entry;
}

/// Fills the variant's alternative of this index.
template <std::size_t index = 0>
AnyEntry ReadAlternative(std::size_t wanted, const Json& json) {
  if constexpr (index == std::variant_size_v<AnyEntry>) {
    throw std::out_of_range("no such entry");
  } else {
    if (wanted != index) return ReadAlternative<index + 1>(wanted, json);
    return ReadEntry<std::variant_alternative_t<index, AnyEntry>>(json);
  }
}

}  // namespace

std::string entryToJson(const AnyEntry& entry) {
  Json json = std::visit([](const auto& kind) { return WriteEntry(kind); }, entry);
  json["type"] = entry.index();
  // A place's title may come from outside, in bytes that are no text.
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::optional<AnyEntry> entryFromJson(const std::string& text) try {
  const Json json = Json::parse(text);
  return ReadAlternative(json.at("type").get<std::size_t>(), json);
} catch (const std::exception&) {
  return std::nullopt;
}

}  // namespace lumenquest::host
