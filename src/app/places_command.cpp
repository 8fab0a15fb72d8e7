#include "app/places_command.h"

#include <map>
#include <nlohmann/json.hpp>
#include <vector>

#include "adapters/printable_text.h"
#include "app/runtime.h"
#include "app/suggestions.h"
#include "app/table.h"
#include "platform/localized_strings.h"
#include "platform/location_utils.h"

namespace lumenquest::app {

namespace {

struct PlacesOptions {
  OptionText text;
  OptionText locale;
  OptionText format;
};

using Json = nlohmann::ordered_json;
using platform::CLPlacemark;
using platform::LocationUtils;
using platform::stringWithFormat;

Json ToJson(const std::optional<std::string>& text) { return text ? Json(*text) : Json(nullptr); }

Json ToJson(const std::optional<platform::NSTimeZone>& zone) {
  return zone ? Json(zone->name) : Json(nullptr);
}

const std::string& TextOf(const PlacesOptions& options, const char* name,
                          const char* expectationKey) {
  if (!options.text) {
    throw UsageError(
        stringWithFormat(appText("error_missing_option"), {name, appText(expectationKey)}));
  }
  return *options.text;
}

std::string SearchPlaces(const PlacesOptions& options) {
  const std::string locale = checkedLocale(options.locale);
  const std::string& text = TextOf(options, "TEXT", "expect_place");
  const OutputFormat format = parseFormat(options.format);
  const auto places = openGazetteer(locale)->geocodeAddressString(text);

  if (format == OutputFormat::json) {
    Json list = Json::array();
    for (const CLPlacemark& place : places) {
      list.push_back({{"name", ToJson(place.locality)},
                      {"administrativeArea", ToJson(place.administrativeArea)},
                      {"country", ToJson(place.country)},
                      {"latitude", place.location->coordinate.latitude},
                      {"longitude", place.location->coordinate.longitude},
                      {"timeZone", ToJson(place.timeZone)}});
    }
    return list.dump(2) + "\n";
  }
  if (places.empty()) {
    throw UsageError(
        stringWithFormat(appText("error_unknown_place"), {adapters::printableText(text)}));
  }
  Table table;
  for (const CLPlacemark& place : places) {
    table.Row(fullName(place),
              LocationUtils::latLonStringWithCoordinate(place.location->coordinate) + "   " +
                  (place.timeZone ? place.timeZone->name : "--"));
  }
  return table.Text();
}

std::string PlacesAt(const PlacesOptions& options) {
  const std::string locale = checkedLocale(options.locale);
  const platform::CLLocation location =
      parseCoordinate("LAT,LON", TextOf(options, "LAT,LON", "expect_coordinate"));
  const OutputFormat format = parseFormat(options.format);
  const auto gazetteer = openGazetteer(locale);
  const auto places = gazetteer->reverseGeocodeLocation(location);
  const auto zone = gazetteer->timeZoneAt(location.coordinate);
  const auto notation = [&](int system) {
    return LocationUtils::latLonStringWithCoordinate(location.coordinate, system);
  };
  // Far from any place the coordinate is all there is to say.
  const std::optional<std::string> title =
      places.empty() ? LocationUtils::latLonStringWithCoordinate(location.coordinate)
                     : places.front().title();
  const std::optional<std::string> subtitle =
      places.empty() ? std::nullopt : places.front().subtitle();

  if (format == OutputFormat::json) {
    const Json json{{"title", ToJson(title)},
                    {"subtitle", ToJson(subtitle)},
                    {"timeZone", ToJson(zone)},
                    {"decimalDegrees", notation(platform::kCoordinateSystemDecimalDegrees)},
                    {"decimalMinutes", notation(platform::kCoordinateSystemDecimalMinutes)},
                    {"seconds", notation(platform::kCoordinateSystemSeconds)}};
    return json.dump(2) + "\n";
  }
  Table table;
  table.Row(appText("row_place"), title.value_or("--"));
  table.Row(appText("row_place_within"), subtitle.value_or("--"));
  table.Row(appText("row_time_zone"), zone ? zone->name : "--");
  table.Row(appText("row_coordinates"), notation(platform::kCoordinateSystemDecimalDegrees));
  table.Row("", notation(platform::kCoordinateSystemDecimalMinutes));
  table.Row("", notation(platform::kCoordinateSystemSeconds));
  return table.Text();
}

}  // namespace

std::string fullName(const CLPlacemark& place) {
  std::string text;
  const std::string* before = nullptr;
  for (const auto* part : {&place.locality, &place.administrativeArea, &place.country}) {
    if (!*part || (before != nullptr && *before == **part)) continue;
    if (before != nullptr) text += ", ";
    text += **part;
    before = &**part;
  }
  return text;
}

void addPlacesCommands(CommandSet& commands) {
  PlacesOptions& o = commands.Keep<PlacesOptions>();
  CommandSet::Command& places =
      commands.AddGroup("places", {"help_usage_places", "help_places", "help_places_examples"});
  commands.Add(places, "search",
               {"help_usage_places_search", "help_places_search", "help_places_examples"},
               {{"TEXT", "", "help_places_text", "expect_place", &o.text, suggestPlaces},
                localeOption(o.locale),
                formatOption(o.format)},
               [&o] { return SearchPlaces(o); });
  commands.Add(places, "at", {"help_usage_places_at", "help_places_at", "help_places_examples"},
               {{"COORDINATE", "", "help_places_coordinate", "expect_coordinate", &o.text},
                localeOption(o.locale),
                formatOption(o.format)},
               [&o] { return PlacesAt(o); });
}

platform::CLPlacemark resolvePlace(const std::string& text, const std::string& locale) {
  const auto places = openGazetteer(locale)->geocodeAddressString(text);
  const std::string shown = adapters::printableText(text);
  if (places.empty()) {
    throw UsageError(stringWithFormat(appText("error_unknown_place"), {shown}));
  }
  // Another place of the same name: which one is meant is the user's to say.
  std::vector<const CLPlacemark*> namesakes;
  std::map<std::string, int> bearers;
  for (const CLPlacemark& place : places) {
    if (!adapters::isSameName(*place.locality, *places.front().locality)) continue;
    namesakes.push_back(&place);
    ++bearers[fullName(place)];
  }
  if (namesakes.size() == 1) return places.front();
  std::string candidates;
  for (const CLPlacemark* place : namesakes) {
    if (!candidates.empty()) candidates += "; ";
    const std::string name = fullName(*place);
    candidates += name;
    // Only their coordinates tell two of one area apart.
    if (bearers[name] > 1) {
      candidates += " (" +
                    LocationUtils::decimalLatLonStringWithCoordinate(place->location->coordinate) +
                    ")";
    }
  }
  throw UsageError(stringWithFormat(appText("error_ambiguous_place"), {shown, candidates}));
}

ChosenPlace choosePlace(const PlaceOptions& options, const std::string& locale) {
  if (!options.place) {
    if (!options.latitude && !options.longitude) throw UsageError(appText("error_no_place"));
    return {parseLocation(options.latitude, options.longitude), std::nullopt,
            parseTimeZone(options.timeZone)};
  }
  if (options.latitude || options.longitude) {
    throw UsageError(appText("error_place_or_coordinate"));
  }
  const CLPlacemark place = resolvePlace(*options.place, locale);
  return {*place.location, place.shortTitle(),
          options.timeZone || !place.timeZone ? parseTimeZone(options.timeZone) : *place.timeZone};
}

}  // namespace lumenquest::app
