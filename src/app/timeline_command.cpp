#include <nlohmann/json.hpp>

#include "adapters/rfc3339.h"
#include "app/record_fields.h"
#include "app/table.h"
#include "app/widget_request.h"
#include "widgets/text.h"

namespace lumenquest::app {

namespace {

using Json = nlohmann::ordered_json;

/// An entry's records, in the entry's order: its own names for them, and the records.
template <typename Visit>
void VisitRecords(const widgets::SunTimelineEntry& entry, Visit visit) {
  visit("data", &entry.data);
  visit("moonData", entry.moonData ? &*entry.moonData : nullptr);
  visit("gcData", entry.gcData ? &*entry.gcData : nullptr);
}
template <typename Visit>
void VisitRecords(const widgets::MoonTimelineEntry& entry, Visit visit) {
  visit("data", &entry.data);
  visit("gcData", entry.gcData ? &*entry.gcData : nullptr);
}
template <typename Visit>
void VisitRecords(const widgets::GalacticCenterTimelineEntry& entry, Visit visit) {
  visit("data", &entry.data);
}

Json ToJson(const RecordFields& fields) {
  Json json = Json::object();
  for (const RecordField& field : fields) json[field.name] = field.value;
  return json;
}

Json ReloadJson(const widgets::TimelineReloadPolicy& policy) {
  if (policy.kind == widgets::TimelineReloadPolicy::Kind::atEnd) return "atEnd";
  return {{"after", adapters::formatRfc3339(*policy.date)}};
}

template <typename Entry>
Json EntryJson(const Entry& entry) {
  Json json{{"date", adapters::formatRfc3339(entry.date)}};
  if constexpr (std::is_same_v<Entry, widgets::PlansTimelineEntry>) {
    json["plans"] = Json::array();
    for (const widgets::PlanItem& plan : entry.plans)
      json["plans"].push_back(ToJson(fieldsOf(plan)));
  } else {
    VisitRecords(entry, [&](const char* name, const auto* record) {
      if (record == nullptr) {
        json[name] = nullptr;
        return;
      }
      json[name] = {{"locationData", ToJson(fieldsOf(record->locationData))}};
      json[name].update(ToJson(fieldsOf(*record)));
    });
  }
  json["theme"] = nameOf(entry.theme);
  return json;
}

/// A value as people read it: an instant with its local time, a text without quotes.
std::string ValueText(const RecordField& field, double mjdTomorrowAt0,
                      const widgets::LocationWidgetData& location) {
  if (field.value.is_null()) return "--";
  if (field.value.is_string()) return field.value.get<std::string>();
  std::string text = field.value.dump();
  const double number = field.isInstant ? field.value.get<double>() : 0.0;
  if (number != 0.0) {
    text += "   " + widgets::eventTimeText(number, mjdTomorrowAt0, location);
  }
  return text;
}

template <typename Entry>
void AddEntry(Table& table, const Entry& entry) {
  table.Row("date", adapters::formatRfc3339(entry.date));
  table.Row("theme", nameOf(entry.theme));
  if constexpr (std::is_same_v<Entry, widgets::PlansTimelineEntry>) {
    for (const widgets::PlanItem& plan : entry.plans) {
      table.Gap();
      for (const RecordField& field : fieldsOf(plan)) {
        table.Row(field.name, ValueText(field, 0.0, {}));
      }
      table.Row("", widgets::planDateText(plan));
    }
  } else {
    VisitRecords(entry, [&](const char* name, const auto* record) {
      if (record == nullptr) return;
      table.Gap();
      table.Row(std::vector<std::string>{name});
      for (const RecordField& field : fieldsOf(record->locationData)) {
        table.Row(std::string("  ") + field.name, ValueText(field, 0.0, {}));
      }
      for (const RecordField& field : fieldsOf(*record)) {
        table.Row(std::string("  ") + field.name,
                  ValueText(field, record->mjdTomorrowAt0, record->locationData));
      }
    });
  }
}

struct TimelineOptions {
  WidgetOptions widget;
  OptionText format;
};

std::string RunTimeline(const TimelineOptions& options) {
  const OutputFormat format = parseFormat(options.format);
  const WidgetRequest request = prepareWidgetRequest(options.widget, "shared");
  const WidgetAnswer answer = askWidget(request);

  if (format == OutputFormat::json) {
    Json json{{"kind", request.kind}, {"family", nameOf(request.family)}};
    json["entry"] = std::visit([](const auto& entry) { return EntryJson(entry); }, answer.entry);
    json["reloadPolicy"] = answer.reloadPolicy ? ReloadJson(*answer.reloadPolicy) : Json(nullptr);
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
  }
  Table table;
  table.Row("kind", request.kind);
  table.Row("family", nameOf(request.family));
  if (answer.reloadPolicy) {
    const Json policy = ReloadJson(*answer.reloadPolicy);
    table.Row("reloadPolicy", policy.is_string()
                                  ? policy.get<std::string>()
                                  : "after " + policy.at("after").get<std::string>());
  }
  std::visit([&](const auto& entry) { AddEntry(table, entry); }, answer.entry);
  return table.Text();
}

struct WidgetsOptions {
  OptionText locale;
  OptionText format;
};

std::string RunWidgets(const WidgetsOptions& options) {
  checkedLocale(options.locale);
  const bool isJson = parseFormat(options.format) == OutputFormat::json;
  Json list = Json::array();
  Table table;
  for (const auto& widget : widgets::LumenquestWidgets::configurations()) {
    Json families = Json::array();
    std::string listed;
    for (const widgets::WidgetFamily family : widget.supportedFamilies) {
      families.push_back(nameOf(family));
      listed += (listed.empty() ? "" : ", ") + std::string(nameOf(family));
    }
    const bool hasPlace = widget.intent == widgets::ConfigurationIntent::locationSelector;
    list.push_back({{"kind", widget.kind},
                    {"intent", hasPlace ? "LocationSelectorIntent" : "ThemeSelectorIntent"},
                    {"families", families},
                    {"displayName", widget.displayName},
                    {"description", widget.description},
                    {"contentMarginsDisabled", widget.contentMarginsDisabled}});
    table.Row({widget.kind, listed, widget.displayName, widget.description});
  }
  return isJson ? list.dump(2) + "\n" : table.Text();
}

}  // namespace

void addWidgetCommands(CommandSet& commands) {
  TimelineOptions& o = commands.Keep<TimelineOptions>();
  std::vector<OptionSpec> specs = widgetOptionSpecs(o.widget, "help_settings_kind");
  specs.push_back(formatOption(o.format));
  commands.Add("timeline", {"help_usage_timeline", "help_timeline", "help_timeline_examples"},
               specs, [&o] { return RunTimeline(o); });
  WidgetsOptions& list = commands.Keep<WidgetsOptions>();
  commands.Add("widgets", {"help_usage_widgets", "help_widgets", "help_widgets_examples"},
               {localeOption(list.locale), formatOption(list.format)},
               [&list] { return RunWidgets(list); });
}

}  // namespace lumenquest::app
