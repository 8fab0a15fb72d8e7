#pragma once

#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "app/command_set.h"
#include "app/places_command.h"
#include "widgets/widget_bundle.h"

namespace lumenquest::app {

enum class HostRequest { placeholder, snapshot, timeline };

/// The options by which a host's request to a widget is made.
struct WidgetOptions {
  OptionText kind;
  /// Whether the command takes "all" in place of a kind.
  bool mayBeAll = false;
  OptionText family;
  PlaceOptions place;
  bool myLocation = false;
  OptionText here;
  OptionText settings;
  OptionText theme;
  OptionText at;
  OptionText locale;
  OptionText request;
  OptionText system;
};

/// The options of such a request, as a command has them. `settingsHelpKey` says which settings are
/// used when none are named.
std::vector<OptionSpec> widgetOptionSpecs(WidgetOptions& options, const char* settingsHelpKey);

/// The entry of any widget.
using AnyEntry = std::variant<widgets::SunTimelineEntry, widgets::MoonTimelineEntry,
                              widgets::GalacticCenterTimelineEntry, widgets::PlansTimelineEntry>;

/// What a host asks: which widget, in which size, how it is configured.
struct WidgetRequest {
  std::string kind;
  widgets::WidgetFamily family = widgets::WidgetFamily::systemSmall;
  /// The plans' widget takes the theme alone.
  widgets::LocationSelectorIntent configuration;
  HostRequest request = HostRequest::timeline;
};

struct WidgetAnswer {
  AnyEntry entry;
  /// Of a timeline.
  std::optional<widgets::TimelineReloadPolicy> reloadPolicy;
};

/// Reads the options and installs the services that they ask for. `settingsByDefault`: "shared" or
/// "memory". Throws UsageError.
WidgetRequest prepareWidgetRequest(const WidgetOptions& options, const char* settingsByDefault);

/// Asks a provider and runs the main loop until it answers.
WidgetAnswer askWidget(const WidgetRequest& request);

/// "systemSmall"
const char* nameOf(widgets::WidgetFamily family);

/// `lumenquest timeline` and `lumenquest widgets`.
void addWidgetCommands(CommandSet& commands);

}  // namespace lumenquest::app
