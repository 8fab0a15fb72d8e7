#include <nlohmann/json.hpp>

#include "app/entry_output.h"
#include "app/table.h"
#include "app/widget_request.h"
#include "widgets/widget_bundle.h"

namespace lumenquest::app {

namespace {

using Json = nlohmann::ordered_json;
using host::nameOf;

struct TimelineOptions {
  WidgetOptions widget;
  OptionText format;
};

std::string RunTimeline(const TimelineOptions& options) {
  const OutputFormat format = parseFormat(options.format);
  const WidgetRequest request = prepareWidgetRequest(options.widget, "shared");
  const host::WidgetAnswer answer = askWidget(request);

  if (format == OutputFormat::json) {
    Json json{{"kind", request.widget.kind}, {"family", nameOf(request.widget.family)}};
    json["entry"] = entryJson(answer.entry);
    json["reloadPolicy"] = answer.reloadPolicy ? reloadJson(*answer.reloadPolicy) : Json(nullptr);
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
  }
  Table table;
  table.Row("kind", request.widget.kind);
  table.Row("family", nameOf(request.widget.family));
  if (answer.reloadPolicy) {
    const Json policy = reloadJson(*answer.reloadPolicy);
    table.Row("reloadPolicy", policy.is_string()
                                  ? policy.get<std::string>()
                                  : "after " + policy.at("after").get<std::string>());
  }
  addEntry(table, answer.entry);
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
