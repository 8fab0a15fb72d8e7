#include "app/widget_request.h"

#include <algorithm>
#include <memory>
#include <type_traits>

#include "adapters/clocks.h"
#include "adapters/glib_main_queue.h"
#include "adapters/printable_text.h"
#include "app/runtime.h"
#include "app/suggestions.h"
#include "platform/localized_strings.h"
#include "platform/location_utils.h"

namespace lumenquest::app {

namespace {

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
  throw UsageError(stringWithFormat(appText("error_bad_option"),
                                    {option, adapters::printableText(*given), choices}));
}

WidgetConfiguration ParseKind(const OptionText& text) {
  const auto configurations = widgets::LumenquestWidgets::configurations();
  const auto shortName = [](const std::string& kind) {
    return Short(Short(kind, "", "widget"), "", "small");
  };
  for (const WidgetConfiguration& configuration : configurations) {
    if (text && shortName(*text) == shortName(configuration.kind)) return configuration;
  }
  ThrowNoChoice("KIND", text, Listed(configurations, [](const auto& one) { return one.kind; }));
}

/// Nothing given: the smallest.
WidgetFamily ParseFamily(const OptionText& text, const WidgetConfiguration& configuration) {
  if (!text) return configuration.supportedFamilies.front();
  for (const WidgetFamily family : configuration.supportedFamilies) {
    if (Short(*text, "system", "") == Short(nameOf(family), "system", "")) return family;
  }
  ThrowNoChoice("--family", text,
                Listed(configuration.supportedFamilies, [](auto one) { return nameOf(one); }));
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

widgets::LocationSelectorIntent ParseConfiguration(const WidgetOptions& options,
                                                   const std::string& locale) {
  widgets::LocationSelectorIntent intent;
  intent.theme = ParseChoice<widgets::Enum>("--theme", options.theme,
                                            {{"system", widgets::Enum::system},
                                             {"dark", widgets::Enum::dark},
                                             {"light", widgets::Enum::light}},
                                            widgets::Enum::unknown);
  const bool hasPlace = options.place.place || options.place.latitude || options.place.longitude;
  if (hasPlace && (options.myLocation || options.here)) {
    throw UsageError(appText("error_place_or_my_location"));
  }
  if (!hasPlace) {
    intent.location = widgets::IntentPlacemark::myLocation();
    return intent;
  }
  const ChosenPlace place = choosePlace(options.place, locale);
  const std::string name =
      place.title ? *place.title
                  : platform::LocationUtils::latLonStringWithCoordinate(place.location.coordinate);
  intent.location = widgets::IntentPlacemark{place.location, name, std::nullopt};
  return intent;
}

template <typename Provider>
WidgetAnswer Ask(Provider& provider, const typename Provider::Intent& intent,
                 const WidgetRequest& request) {
  const widgets::TimelineProviderContext context{request.family};
  WidgetAnswer answer;
  bool isAnswered = false;
  const auto take = [&](typename Provider::Entry entry) {
    answer.entry = std::move(entry);
    isAnswered = true;
  };
  switch (request.request) {
    case HostRequest::placeholder:
      take(provider.placeholder(context));
      break;
    case HostRequest::snapshot:
      provider.getSnapshot(intent, context, take);
      break;
    case HostRequest::timeline:
      provider.getTimeline(intent, context,
                           [&](widgets::Timeline<typename Provider::Entry> timeline) {
                             answer.reloadPolicy = timeline.policy;
                             take(std::move(timeline.entries.front()));
                           });
      break;
  }
  adapters::GlibMainQueue::runUntil([&] { return isAnswered; });
  return answer;
}

}  // namespace

const char* nameOf(WidgetFamily family) {
  switch (family) {
    case WidgetFamily::systemSmall:
      return "systemSmall";
    case WidgetFamily::systemMedium:
      return "systemMedium";
    case WidgetFamily::systemLarge:
      break;
  }
  return "systemLarge";
}

std::vector<OptionSpec> widgetOptionSpecs(WidgetOptions& options, const char* settingsHelpKey) {
  return {
      {"KIND", "", "help_kind", "expect_kind", &options.kind, suggestKinds},
      {"--family", "small|medium|large", "help_family", "expect_family", &options.family},
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

WidgetRequest prepareWidgetRequest(const WidgetOptions& options, const char* settingsByDefault) {
  RuntimeOptions runtime;
  runtime.locale = checkedLocale(options.locale);
  const WidgetConfiguration widget = ParseKind(options.kind);
  WidgetRequest request;
  request.kind = widget.kind;
  request.family = ParseFamily(options.family, widget);
  const bool isAboutPlace = options.place.place || options.place.latitude ||
                            options.place.longitude || options.myLocation || options.here;
  if (isAboutPlace && widget.intent == widgets::ConfigurationIntent::themeSelector) {
    throw UsageError(stringWithFormat(appText("error_widget_without_place"), {widget.kind}));
  }
  request.configuration = ParseConfiguration(options, runtime.locale);
  request.request = ParseChoice<HostRequest>("--request", options.request,
                                             {{"timeline", HostRequest::timeline},
                                              {"snapshot", HostRequest::snapshot},
                                              {"placeholder", HostRequest::placeholder}},
                                             HostRequest::timeline);
  const OptionText settings = options.settings ? options.settings : OptionText(settingsByDefault);
  runtime.hasOwnSettings =
      ParseChoice<bool>("--settings", settings, {{"shared", false}, {"memory", true}}, false);
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
  return request;
}

WidgetAnswer askWidget(const WidgetRequest& request) {
  WidgetAnswer answer;
  const auto askIfMeant = [&](const auto& widget) {
    if (widget.kind != request.kind) return;
    typename std::decay_t<decltype(widget)>::Provider provider;
    if constexpr (std::is_same_v<typename decltype(provider)::Intent,
                                 widgets::ThemeSelectorIntent>) {
      widgets::ThemeSelectorIntent intent;
      intent.theme = request.configuration.theme;
      answer = Ask(provider, intent, request);
    } else {
      answer = Ask(provider, request.configuration, request);
    }
  };
  std::apply([&](const auto&... widget) { (askIfMeant(widget), ...); },
             widgets::LumenquestWidgets{}.body);
  return answer;
}

}  // namespace lumenquest::app
