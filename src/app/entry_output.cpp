#include "app/entry_output.h"

#include <charconv>
#include <cmath>
#include <iterator>
#include <optional>
#include <string>
#include <type_traits>

#include "adapters/rfc3339.h"
#include "host/record_fields.h"
#include "host/widget_summary.h"
#include "widgets/text.h"

namespace lumenquest::app {

namespace {

using host::FieldMeaning;
using host::visitFields;
using Json = nlohmann::ordered_json;

Json Value(double value) { return value; }
/// A float by the digits that tell it from its neighbours, not by those of the double it widens to.
Json Value(float value) {
  if (!std::isfinite(value)) return nullptr;
  char digits[32];
  const auto written = std::to_chars(std::begin(digits), std::end(digits), value);
  double number = 0.0;
  std::from_chars(digits, written.ptr, number);
  return number;
}
Json Value(bool value) { return value; }
Json Value(const std::string& value) { return value; }
Json Value(platform::NSDate value) { return adapters::formatRfc3339(value); }
Json Value(const platform::NSTimeZone& value) { return value.name; }
Json Value(platform::CLAuthorizationStatus value) { return static_cast<int>(value); }
template <typename Type>
Json Value(const std::optional<Type>& value) {
  return value ? Value(*value) : Json(nullptr);
}

template <typename Record>
Json FieldsJson(const Record& record) {
  Json json = Json::object();
  visitFields(record,
              [&](const char* name, const auto& field, auto...) { json[name] = Value(field); });
  return json;
}

template <typename Record>
Json RecordJson(const Record& record) {
  Json json{{"locationData", FieldsJson(record.locationData)}};
  json.update(FieldsJson(record));
  return json;
}
template <typename Record>
Json RecordJson(const std::optional<Record>& record) {
  return record ? RecordJson(*record) : Json(nullptr);
}

/// A value as people read it: an instant with its local time, a text without quotes.
std::string ValueText(const Json& value, FieldMeaning meaning, double mjdTomorrowAt0,
                      const widgets::LocationWidgetData& location) {
  if (value.is_null()) return "--";
  if (value.is_string()) return value.get<std::string>();
  std::string text = value.dump();
  const double number = meaning == FieldMeaning::instant ? value.get<double>() : 0.0;
  if (number != 0.0) text += "   " + widgets::eventTimeText(number, mjdTomorrowAt0, location);
  return text;
}

template <typename Record>
void AddFields(Table& table, const Record& record, const std::string& indent,
               double mjdTomorrowAt0 = 0.0, const widgets::LocationWidgetData& location = {}) {
  visitFields(
      record, [&](const char* name, const auto& field, FieldMeaning meaning = FieldMeaning::plain) {
        table.Row(indent + name, ValueText(Value(field), meaning, mjdTomorrowAt0, location));
      });
}

template <typename Record>
void AddRecord(Table& table, const char* name, const Record& record) {
  table.Gap();
  table.Row(std::vector<std::string>{name});
  AddFields(table, record.locationData, "  ");
  AddFields(table, record, "  ", record.mjdTomorrowAt0, record.locationData);
}
template <typename Record>
void AddRecord(Table& table, const char* name, const std::optional<Record>& record) {
  if (record) AddRecord(table, name, *record);
}

template <typename Entry>
inline constexpr bool kIsOfPlans = std::is_same_v<Entry, widgets::PlansTimelineEntry>;

}  // namespace

nlohmann::ordered_json entryJson(const host::AnyEntry& entry) {
  return std::visit(
      []<typename Entry>(const Entry& kind) {
        Json json{{"date", Value(kind.date)}};
        if constexpr (kIsOfPlans<Entry>) {
          json["plans"] = Json::array();
          for (const widgets::PlanItem& plan : kind.plans)
            json["plans"].push_back(FieldsJson(plan));
        } else {
          host::visitRecords(
              kind, [&](const char* name, const auto& record) { json[name] = RecordJson(record); });
        }
        json["theme"] = host::nameOf(kind.theme);
        return json;
      },
      entry);
}

nlohmann::ordered_json widgetJson(const host::ShownWidget& shown) {
  const host::PlacedWidget& widget = shown.widget;
  return {{"id", widget.id},
          {"kind", widget.kind},
          {"family", host::familyName(widget.family)},
          {"state", host::stateOf(shown.entry)},
          {"text", host::summaryOf(shown.entry)},
          {"details", host::detailsOf(shown.entry, widget.family)},
          {"date", adapters::formatRfc3339(host::dateOf(shown.entry))},
          {"reload", adapters::formatRfc3339(shown.reloadDate)}};
}

nlohmann::ordered_json reloadJson(const widgets::TimelineReloadPolicy& policy) {
  if (policy.kind == widgets::TimelineReloadPolicy::Kind::atEnd) return "atEnd";
  return {{"after", adapters::formatRfc3339(*policy.date)}};
}

void addEntry(Table& table, const host::AnyEntry& entry) {
  std::visit(
      [&]<typename Entry>(const Entry& kind) {
        table.Row("date", adapters::formatRfc3339(kind.date));
        table.Row("theme", host::nameOf(kind.theme));
        if constexpr (kIsOfPlans<Entry>) {
          for (const widgets::PlanItem& plan : kind.plans) {
            table.Gap();
            AddFields(table, plan, "");
            table.Row("", widgets::planDateText(plan));
          }
        } else {
          host::visitRecords(
              kind, [&](const char* name, const auto& record) { AddRecord(table, name, record); });
        }
      },
      entry);
}

}  // namespace lumenquest::app
