#include "host/home_screen.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <utility>

#include "host/widget_entry.h"
#include "platform/localized_strings.h"
#include "widgets/widget_bundle.h"

namespace lumenquest::host {

namespace {

using Json = nlohmann::ordered_json;
using widgets::WidgetFamily;

constexpr std::size_t kLongestId = 40;
/// Bytes; a title is a line of a widget, not a text.
constexpr std::size_t kLongestName = 400;

constexpr std::pair<widgets::Enum, const char*> kThemes[] = {{widgets::Enum::system, "system"},
                                                             {widgets::Enum::dark, "dark"},
                                                             {widgets::Enum::light, "light"}};
constexpr std::pair<WidgetFamily, const char*> kFamilies[] = {
    {WidgetFamily::systemSmall, "small"},
    {WidgetFamily::systemMedium, "medium"},
    {WidgetFamily::systemLarge, "large"}};

[[noreturn]] void Throw(const char* key, std::vector<std::string> arguments = {},
                        std::string detail = {}) {
  throw HomeScreenError({"HomeScreen", 1, key, std::move(arguments), std::move(detail)});
}

template <typename Items, typename Name>
std::string Listed(const Items& items, Name name) {
  std::string list;
  for (const auto& item : items) list += (list.empty() ? "" : ", ") + std::string(name(item));
  return list;
}

bool IsId(const std::string& id) {
  return !id.empty() && id.size() <= kLongestId && std::all_of(id.begin(), id.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
  });
}

bool IsAboutPlace(const widgets::WidgetConfiguration& configuration) {
  return configuration.intent == widgets::ConfigurationIntent::locationSelector;
}

/// The widget as a home screen keeps it; throws when there can be no such widget.
PlacedWidget Checked(PlacedWidget widget) {
  const auto configuration = configurationOf(widget.kind);
  if (!configuration) {
    Throw("home_error_kind", {widget.kind, Listed(widgets::LumenquestWidgets::configurations(),
                                                  [](const auto& one) { return one.kind; })});
  }
  const auto& families = configuration->supportedFamilies;
  if (std::find(families.begin(), families.end(), widget.family) == families.end()) {
    Throw("home_error_family", {widget.kind, familyName(widget.family),
                                Listed(families, [](auto one) { return familyName(one); })});
  }
  if (widget.place && widget.place->isMyLocation()) widget.place.reset();
  if (widget.place) {
    if (!IsAboutPlace(*configuration)) Throw("home_error_no_place", {widget.kind});
    if (!widget.place->location.coordinate.isValid() || widget.place->name.size() > kLongestName) {
      Throw("home_error_place");
    }
  }
  if (widget.theme == widgets::Enum::unknown) widget.theme = widgets::Enum::system;
  return widget;
}

std::string TextOf(const Json& json, const char* name) {
  const auto found = json.find(name);
  if (found == json.end()) return {};
  if (!found->is_string()) Throw("home_error_text", {name});
  return found->get<std::string>();
}

void RefuseOthers(const Json& json, std::initializer_list<const char*> known) {
  for (const auto& [name, value] : json.items()) {
    if (std::find(known.begin(), known.end(), name) == known.end()) {
      Throw("home_error_member", {name, Listed(known, [](auto one) { return one; })});
    }
  }
}

std::optional<widgets::IntentPlacemark> PlaceOf(const Json& json) {
  const auto found = json.find("place");
  if (found == json.end() || found->is_null()) return std::nullopt;
  if (!found->is_object()) Throw("home_error_place");
  RefuseOthers(*found, {"name", "latitude", "longitude"});
  const auto number = [&](const char* name) {
    const auto value = found->find(name);
    if (value == found->end() || !value->is_number()) Throw("home_error_place");
    return value->get<double>();
  };
  const platform::CLLocation location{{number("latitude"), number("longitude")}};
  return widgets::IntentPlacemark{location, TextOf(*found, "name"), std::nullopt};
}

PlacedWidget WidgetOf(const Json& json) {
  if (!json.is_object()) Throw("home_error_shape");
  RefuseOthers(json, {"id", "kind", "family", "theme", "place"});
  PlacedWidget widget;
  widget.id = TextOf(json, "id");
  widget.kind = TextOf(json, "kind");
  const auto configuration = configurationOf(widget.kind);
  if (configuration) widget.family = configuration->supportedFamilies.front();
  if (json.contains("family")) {
    const std::string text = TextOf(json, "family");
    const auto family = familyNamed(text);
    if (!family) {
      Throw("home_error_family",
            {widget.kind, text, Listed(kFamilies, [](const auto& one) { return one.second; })});
    }
    widget.family = *family;
  }
  if (json.contains("theme")) {
    const std::string text = TextOf(json, "theme");
    const auto theme = themeNamed(text);
    if (!theme) Throw("home_error_theme", {text});
    widget.theme = *theme;
  }
  widget.place = PlaceOf(json);
  return widget;
}

}  // namespace

const char* familyName(WidgetFamily family) {
  return std::find_if(std::begin(kFamilies), std::end(kFamilies),
                      [&](const auto& one) { return one.first == family; })
      ->second;
}

std::optional<WidgetFamily> familyNamed(const std::string& text) {
  for (const auto& [family, name] : kFamilies) {
    if (text == name || text == nameOf(family)) return family;
  }
  return std::nullopt;
}

const char* themeName(widgets::Enum theme) {
  for (const auto& [value, name] : kThemes) {
    if (value == theme) return name;
  }
  return kThemes[0].second;
}

std::optional<widgets::Enum> themeNamed(const std::string& text) {
  for (const auto& [theme, name] : kThemes) {
    if (text == name) return theme;
  }
  return std::nullopt;
}

std::optional<widgets::WidgetConfiguration> configurationOf(const std::string& kind) {
  for (auto& configuration : widgets::LumenquestWidgets::configurations()) {
    if (configuration.kind == kind) return configuration;
  }
  return std::nullopt;
}

HomeScreen HomeScreen::standard() {
  HomeScreen screen;
  for (const auto& configuration : widgets::LumenquestWidgets::configurations()) {
    PlacedWidget widget;
    widget.kind = configuration.kind;
    widget.family = configuration.supportedFamilies.front();
    screen.add(widget);
  }
  return screen;
}

HomeScreen HomeScreen::fromJson(const std::string& text) {
  Json json;
  std::istringstream stream(text);
  try {
    json = Json::parse(stream);
  } catch (const Json::exception&) {
    // What is no JSON, and numbers beyond what can be held, whose exception does not say where.
    stream.clear();
    const auto line = std::count(text.begin(), text.begin() + stream.tellg(), '\n') + 1;
    Throw("home_error_json", {std::to_string(line)});
  }
  if (!json.is_object() || !json.contains("widgets") || !json.at("widgets").is_array()) {
    Throw("home_error_shape");
  }
  RefuseOthers(json, {"widgets"});
  HomeScreen screen;
  for (const Json& widget : json.at("widgets")) screen.add(WidgetOf(widget));
  return screen;
}

std::string HomeScreen::toJson() const {
  Json list = Json::array();
  for (const PlacedWidget& widget : widgets_) {
    Json json{{"id", widget.id},
              {"kind", widget.kind},
              {"family", familyName(widget.family)},
              {"theme", themeName(widget.theme)}};
    if (widget.place) {
      const auto& coordinate = widget.place->location.coordinate;
      json["place"] = {{"name", widget.place->name},
                       {"latitude", coordinate.latitude},
                       {"longitude", coordinate.longitude}};
    }
    list.push_back(std::move(json));
  }
  return Json{{"widgets", std::move(list)}}.dump(2, ' ', false, Json::error_handler_t::replace) +
         "\n";
}

const PlacedWidget* HomeScreen::find(const std::string& id) const {
  const auto found = std::find_if(widgets_.begin(), widgets_.end(),
                                  [&](const PlacedWidget& one) { return one.id == id; });
  return found == widgets_.end() ? nullptr : &*found;
}

std::string HomeScreen::add(PlacedWidget widget, std::optional<std::size_t> position) {
  widget = Checked(std::move(widget));
  if (widgets_.size() >= kMostWidgets) {
    Throw("home_error_too_many", {std::to_string(kMostWidgets)});
  }
  if (widget.id.empty()) widget.id = NewId(widget.kind);
  if (!IsId(widget.id)) Throw("home_error_id", {widget.id});
  if (find(widget.id) != nullptr) Throw("home_error_twice", {widget.id});
  const std::size_t index = std::min(position.value_or(widgets_.size()), widgets_.size());
  std::string id = widget.id;
  widgets_.insert(widgets_.begin() + static_cast<std::ptrdiff_t>(index), std::move(widget));
  return id;
}

void HomeScreen::replace(const PlacedWidget& widget) {
  const std::size_t index = IndexOf(widget.id);
  widgets_[index] = Checked(widget);
}

void HomeScreen::remove(const std::string& id) {
  widgets_.erase(widgets_.begin() + static_cast<std::ptrdiff_t>(IndexOf(id)));
}

void HomeScreen::move(const std::string& id, std::size_t position) {
  const std::size_t from = IndexOf(id);
  const std::size_t to = std::min(position, widgets_.size() - 1);
  const auto at = [&](std::size_t index) {
    return widgets_.begin() + static_cast<std::ptrdiff_t>(index);
  };
  if (from < to) {
    std::rotate(at(from), at(from + 1), at(to + 1));
  } else {
    std::rotate(at(to), at(from), at(from + 1));
  }
}

std::size_t HomeScreen::IndexOf(const std::string& id) const {
  const PlacedWidget* const found = find(id);
  if (found == nullptr) {
    Throw("home_error_unknown",
          {id, widgets_.empty() ? "--" : Listed(widgets_, [](const PlacedWidget& one) {
             return one.id;
           })});
  }
  return static_cast<std::size_t>(found - widgets_.data());
}

std::string shortNameOf(const std::string& kind) {
  static const std::map<std::string, std::string> kNames{{"GalacticCenterSmallWidget", "milky-way"},
                                                         {"LumenquestWidget", "lumenquest"},
                                                         {"MoonWidget", "moon"},
                                                         {"PlansWidget", "plans"},
                                                         {"SunWidget", "sun"}};
  const auto known = kNames.find(kind);
  return known == kNames.end() ? "widget" : known->second;
}

std::string HomeScreen::NewId(const std::string& kind) const {
  const std::string name = shortNameOf(kind);
  std::string id = name;
  for (int number = 2; find(id) != nullptr; ++number) id = name + "-" + std::to_string(number);
  return id;
}

}  // namespace lumenquest::host
