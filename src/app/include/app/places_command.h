#pragma once

#include <optional>
#include <string>

#include "app/command_set.h"
#include "platform/core_location.h"

namespace lumenquest::app {

/// `lumenquest places`: the gazetteer, searched by name or by coordinate.
void addPlacesCommands(CommandSet& commands);

/// The one place that a --place text names, in the language of `locale`. Throws UsageError when
/// there is none, or when several places bear the name; then the message lists them.
platform::CLPlacemark resolvePlace(const std::string& text, const std::string& locale);

/// "Chamonix-Mont-Blanc, Auvergne-Rhône-Alpes, France": enough to find the same place again.
std::string fullName(const platform::CLPlacemark& place);

/// The options by which a place is named: by --place, or by its coordinate.
struct PlaceOptions {
  OptionText place;
  OptionText latitude;
  OptionText longitude;
  OptionText timeZone;
};

/// Whether any of the options that name a place is given.
inline bool hasPlace(const PlaceOptions& options) {
  return options.place || options.latitude || options.longitude;
}

struct ChosenPlace {
  platform::CLLocation location;
  /// The place's name, when it was asked for by name.
  std::optional<std::string> title;
  /// As given; else the named place's own; else the device's.
  platform::NSTimeZone timeZone;
};

/// Throws UsageError as resolvePlace does, and when both or neither are given.
ChosenPlace choosePlace(const PlaceOptions& options, const std::string& locale);

}  // namespace lumenquest::app
