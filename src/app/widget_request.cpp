#include "app/widget_request.h"

#include <memory>

#include "adapters/clocks.h"
#include "adapters/glib_main_queue.h"
#include "adapters/printable_text.h"
#include "app/runtime.h"
#include "app/suggestions.h"
#include "host/widget_entry.h"
#include "platform/localized_strings.h"
#include "platform/location_utils.h"
#include "widgets/widget_bundle.h"

namespace lumenquest::app {

namespace {

using host::HostRequest;
using host::nameOf;
using platform::stringWithFormat;
using widgets::WidgetConfiguration;
using widgets::WidgetFamily;

/// Letters in lower case, without a beginning or an ending that people leave out.
std::string Short(std::string text, std::string_view beginning, std::string_view ending) {
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  if (text.starts_with(beginning)) text.erase(0, beginning.size());
  if (text.ends_with(ending)) text.erase(text.size() - ending.size());
  return text;
}

template <typename Items, typename Name>
std::string Listed(const Items& items, Name name) {
  std::string list;
  for (const auto& item : items) {
    if (!list.empty()) list += ", ";
    list += name(item);
  }
  return list;
}

[[noreturn]] void ThrowNoChoice(const char* option, const OptionText& given,
                                const std::string& choices) {
  if (!given)
    throw UsageError(stringWithFormat(appText("error_missing_option"), {option, choices}));
  throwBadOptionExpecting(option, *given, choices);
}

WidgetConfiguration ParseKind(const OptionText& text, bool mayBeAll) {
  if (const auto configuration = text ? kindNamed(*text) : std::nullopt) return *configuration;
  ThrowNoChoice("KIND", text,
                Listed(widgets::LumenquestWidgets::configurations(), [](const auto& one) {
                  return one.kind + " (" + host::shortNameOf(one.kind) + ")";
                }) + (mayBeAll ? ", all" : ""));
}

/// Nothing given: the smallest.
WidgetFamily ParseFamily(const OptionText& text, const WidgetConfiguration& configuration) {
  if (!text) return configuration.supportedFamilies.front();
  const auto shortName = [](const std::string& name) { return Short(name, "system", ""); };
  for (const WidgetFamily family : configuration.supportedFamilies) {
    if (shortName(*text) == shortName(nameOf(family))) return family;
  }
  ThrowNoChoice("--family", text, Listed(configuration.supportedFamilies, [&](auto one) {
                  return shortName(nameOf(one));
                }));
}

/// One of a few words.
template <typename Value>
Value ParseChoice(const char* option, const OptionText& text,
                  std::initializer_list<std::pair<const char*, Value>> choices, Value otherwise) {
  if (!text) return otherwise;
  for (const auto& [word, value] : choices) {
    if (*text == word) return value;
  }
  ThrowNoChoice(option, text, Listed(choices, [](const auto& one) { return one.first; }));
}

/// Absent: wherever the device is.
std::optional<widgets::IntentPlacemark> ParsePlace(const WidgetOptions& options,
                                                   const std::string& locale) {
  if (!hasPlace(options.place)) return std::nullopt;
  if (options.myLocation || options.here) throw UsageError(appText("error_place_or_my_location"));
  const ChosenPlace place = choosePlace(options.place, locale);
  const std::string name =
      place.title ? *place.title
                  : platform::LocationUtils::latLonStringWithCoordinate(place.location.coordinate);
  return widgets::IntentPlacemark{place.location, name, std::nullopt};
}

}  // namespace

std::optional<WidgetConfiguration> kindNamed(const std::string& text) {
  const auto shortName = [](const std::string& kind) {
    return Short(Short(kind, "", "widget"), "", "small");
  };
  for (const WidgetConfiguration& configuration : widgets::LumenquestWidgets::configurations()) {
    if (shortName(text) == shortName(configuration.kind) ||
        text == host::shortNameOf(configuration.kind)) {
      return configuration;
    }
  }
  return std::nullopt;
}

std::vector<OptionSpec> widgetOptionSpecs(WidgetOptions& options, const char* settingsHelpKey) {
  return {
      {"KIND", "", options.mayBeAll ? "help_kind_or_all" : "help_kind", "expect_kind",
       &options.kind, suggestKinds},
      {"--family",
       "small|medium|large",
       "help_family",
       "expect_family",
       &options.family,
       {},
       suggestFamiliesOfKind},
      placeOption(options.place.place),
      latitudeOption(options.place.latitude),
      longitudeOption(options.place.longitude),
      {"--my-location", "", "help_my_location", nullptr, &options.myLocation},
      {"--here", "LAT,LON", "help_here", "expect_coordinate", &options.here},
      {"--settings", "shared|memory", settingsHelpKey, "expect_settings_kind", &options.settings},
      {"--theme", "system|dark|light", "help_theme", "expect_theme", &options.theme},
      {"--request", "timeline|snapshot|placeholder", "help_request", "expect_request",
       &options.request},
      atOption(options.at),
      localeOption(options.locale)};
}

host::PlacedWidget parseWidget(const WidgetOptions& options, const std::string& locale) {
  const WidgetConfiguration configuration = ParseKind(options.kind, options.mayBeAll);
  host::PlacedWidget widget;
  widget.kind = configuration.kind;
  widget.family = ParseFamily(options.family, configuration);
  const bool isAboutPlace = hasPlace(options.place) || options.myLocation || options.here;
  if (isAboutPlace && configuration.intent == widgets::ConfigurationIntent::themeSelector) {
    throw UsageError(stringWithFormat(appText("error_widget_without_place"), {widget.kind}));
  }
  widget.place = ParsePlace(options, locale);
  widget.theme = ParseChoice<widgets::Enum>("--theme", options.theme,
                                            {{"system", widgets::Enum::system},
                                             {"dark", widgets::Enum::dark},
                                             {"light", widgets::Enum::light}},
                                            widgets::Enum::unknown);
  return widget;
}

bool parseSettingsKind(const OptionText& text, const char* byDefault) {
  return ParseChoice<bool>("--settings", text.value_or(byDefault),
                           {{"shared", false}, {"memory", true}}, false);
}

WidgetRequest prepareWidgetRequest(const WidgetOptions& options, const char* settingsByDefault) {
  RuntimeOptions runtime;
  runtime.locale = checkedLocale(options.locale);
  WidgetRequest request;
  request.request = ParseChoice<HostRequest>("--request", options.request,
                                             {{"timeline", HostRequest::timeline},
                                              {"snapshot", HostRequest::snapshot},
                                              {"placeholder", HostRequest::placeholder}},
                                             HostRequest::timeline);
  runtime.hasOwnSettings = parseSettingsKind(options.settings, settingsByDefault);
  if (options.here) {
    runtime.here = parseCoordinate("--here", *options.here).coordinate;
  } else {
    runtime.here = configuredPosition();
  }
  // One moment for all values when it is given; else time goes on while the host waits.
  if (options.at) {
    runtime.clock = std::make_shared<adapters::FixedClock>(parseInstant(options.at));
  }
  installServices(runtime);
  // The coordinate of a place is written as the settings have it: these ones.
  request.widget = parseWidget(options, runtime.locale);
  return request;
}

host::WidgetAnswer askWidget(const WidgetRequest& request) {
  const auto source = host::WidgetSource::ofKind(request.widget.kind);
  std::optional<host::WidgetAnswer> answer;
  source->ask(request.request, request.widget,
              [&](host::WidgetAnswer given) { answer = std::move(given); });
  adapters::GlibMainQueue::runUntil([&] { return answer.has_value(); });
  return *answer;
}

}  // namespace lumenquest::app
