#pragma once

#include <vector>

#include "app/command_set.h"
#include "app/places_command.h"
#include "host/home_screen.h"
#include "host/widget_source.h"

namespace lumenquest::app {

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

/// What a host asks, and of which widget.
struct WidgetRequest {
  host::PlacedWidget widget;
  host::HostRequest request = host::HostRequest::timeline;
};

/// The kind by its name, in letters of either case and with or without what kinds' names share;
/// nothing for what is none.
std::optional<widgets::WidgetConfiguration> kindNamed(const std::string& text);
/// A widget without an identifier. Throws UsageError.
host::PlacedWidget parseWidget(const WidgetOptions& options, const std::string& locale);

/// Whether the settings end with the process. Throws UsageError.
bool parseSettingsKind(const OptionText& text, const char* byDefault);

/// Reads the options and installs the services that they ask for. `settingsByDefault`: "shared" or
/// "memory". Throws UsageError.
WidgetRequest prepareWidgetRequest(const WidgetOptions& options, const char* settingsByDefault);

/// Asks a provider and runs the main loop until it answers.
host::WidgetAnswer askWidget(const WidgetRequest& request);

/// `lumenquest timeline` and `lumenquest widgets`.
void addWidgetCommands(CommandSet& commands);

}  // namespace lumenquest::app
