#pragma once

#include <optional>
#include <string>

#include "app/option_values.h"
#include "platform/core_location.h"

namespace lumenquest::app {

/// `lumenquest places`: the gazetteer, searched by name or by coordinate.
struct PlacesOptions {
  OptionText text;
  OptionText locale;
  OptionText format;
};

// Each returns the output and throws UsageError for wrong use, adapters::GazetteerError when
// the gazetteer cannot be read.

std::string searchPlaces(const PlacesOptions& options);
std::string placesAt(const PlacesOptions& options);

/// The one place that a --place text names, in the language of `locale`. Throws UsageError when
/// there is none, or when several places bear the name; then the message lists them.
platform::CLPlacemark resolvePlace(const std::string& text, const std::string& locale);

}  // namespace lumenquest::app
