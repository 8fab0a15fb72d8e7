#include "app/suggestions.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "adapters/icu_services.h"
#include "app/places_command.h"
#include "app/runtime.h"
#include "app/widget_request.h"
#include "host/plan_pages.h"
#include "platform/localized_strings.h"
#include "widgets/deep_links.h"
#include "widgets/plans/plan_item.h"
#include "widgets/widget_bundle.h"

namespace lumenquest::app {

std::vector<Suggestion> suggestPlaces(const std::string& beginning) {
  // A single letter begins thousands of names, of which the search shows the first few.
  if (beginning.size() < 2) return {};
  const std::string locale = adapters::environmentLocale();
  const auto gazetteer = openGazetteer(locale);
  auto places = gazetteer->geocodeAddressString(beginning);
  // An area or country is searched as a whole; of an unfinished one the name alone is known.
  if (places.empty())
    places = gazetteer->geocodeAddressString(beginning.substr(0, beginning.find(',')));
  std::vector<Suggestion> suggestions;
  for (const auto& place : places) {
    suggestions.push_back({fullName(place), ""});
  }
  return suggestions;
}

std::vector<Suggestion> suggestTimeZones(const std::string&) {
  // As the library that loads the zones does.
  const char* const folder = std::getenv("TZDIR");
  std::ifstream table(std::filesystem::path(folder != nullptr ? folder : "/usr/share/zoneinfo") /
                      "zone.tab");
  std::vector<Suggestion> suggestions;
  for (std::string line; std::getline(table, line);) {
    if (line.starts_with('#')) continue;
    // Country, coordinate, zone, perhaps a comment.
    std::istringstream fields(line);
    std::string country, coordinate, zone;
    if (fields >> country >> coordinate >> zone) suggestions.push_back({zone, country});
  }
  return suggestions;
}

std::vector<Suggestion> suggestLocales(const std::string&) {
  std::vector<Suggestion> suggestions;
  std::error_code error;
  for (const auto& file :
       std::filesystem::directory_iterator(resourceFolder() + "/strings/App", error)) {
    const std::string language = file.path().stem().string();
    if (language != "root") suggestions.push_back({language, ""});
  }
  std::sort(suggestions.begin(), suggestions.end(),
            [](const auto& a, const auto& b) { return a.word < b.word; });
  return suggestions;
}

std::vector<Suggestion> suggestKinds(const std::string&) {
  std::vector<Suggestion> suggestions;
  for (const auto& widget : widgets::LumenquestWidgets::configurations()) {
    suggestions.push_back({widget.kind, widget.displayName});
  }
  return suggestions;
}

std::vector<Suggestion> suggestFamiliesOfKind(const std::vector<std::string>& arguments) {
  std::vector<Suggestion> suggestions;
  const auto widget = arguments.empty() ? std::nullopt : kindNamed(arguments.front());
  if (!widget) return suggestions;
  for (const widgets::WidgetFamily family : widget->supportedFamilies) {
    suggestions.push_back({host::familyName(family), ""});
  }
  return suggestions;
}

std::vector<Suggestion> suggestLinks(const std::string&) {
  const auto common = [](const char* key) {
    return platform::localizedString(key, platform::kTableCommon);
  };
  std::vector<Suggestion> suggestions{{widgets::kSunLink, common("appwidget_sun")},
                                      {widgets::kMoonLink, common("appwidget_moon")},
                                      {widgets::kPlansLink, common("appwidget_plans")}};
  for (const auto& plan : host::savedPlans().plans) {
    const std::string id = widgets::percentEncodedForUrlHost(plan->objectID().URIRepresentation());
    suggestions.push_back({widgets::planLink(id), plan->name().value_or("")});
  }
  return suggestions;
}

}  // namespace lumenquest::app
