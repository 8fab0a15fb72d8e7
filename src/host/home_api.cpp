#include "host/home_api.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "platform/localized_strings.h"
#include "platform/location_utils.h"
#include "platform/ns_string.h"

namespace lumenquest::host {

namespace {

using Json = nlohmann::ordered_json;
using platform::localizedString;
using platform::stringWithFormat;

constexpr std::size_t kKeptSearches = 16;
/// Bytes; nobody types a longer name.
constexpr std::size_t kLongestTerm = 200;

/// A request that cannot be understood.
class RequestError : public std::runtime_error {
 public:
  explicit RequestError(const char* key,
                        std::initializer_list<platform::FormatArgument> arguments = {})
      : std::runtime_error(stringWithFormat(localizedString(key, platform::kTableApp), arguments)) {
  }
};

WebResponse Answer(const Json& json, int status = 200) {
  WebResponse response;
  response.status = status;
  response.contentType = "application/json";
  response.body = json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
  return response;
}

WebResponse NotAllowed(const char* allow) {
  WebResponse response = Answer(
      {{"error",
        stringWithFormat(localizedString("web_error_method", platform::kTableApp), {allow})}},
      405);
  response.allow = allow;
  return response;
}

Json ToJson(const PlacedWidget& widget) {
  HomeScreen screen;
  screen.add(widget);
  return Json::parse(screen.toJson()).at("widgets").at(0);
}

/// A widget as the file has it, with all that the file's reader checks.
PlacedWidget WidgetOf(const Json& json) {
  return HomeScreen::fromJson(Json{{"widgets", Json::array({json})}}.dump()).widgets().at(0);
}

Json Shown(const Scheduler& scheduler, const HomeScreenFile& file) {
  Json list = Json::array();
  for (const ShownWidget& shown : scheduler.shown()) {
    Json json = ToJson(shown.widget);
    json["version"] = shown.version;
    json["isPlaceholder"] = shown.isPlaceholder;
    list.push_back(std::move(json));
  }
  Json shown{{"widgets", std::move(list)}};
  if (const auto problem = file.problem()) shown["error"] = *problem;
  return shown;
}

Json Parsed(const std::string& body) {
  Json json = Json::parse(body, nullptr, false);
  if (!json.is_object()) throw RequestError("web_error_json");
  return json;
}

std::string IdOf(const Json& json) {
  const auto id = json.find("id");
  if (id == json.end() || !id->is_string()) throw RequestError("web_error_id");
  return id->get<std::string>();
}

std::optional<std::size_t> TakePosition(Json& json) {
  const auto position = json.find("position");
  if (position == json.end()) return std::nullopt;
  if (!position->is_number_unsigned()) throw RequestError("web_error_position");
  const auto value = position->get<std::size_t>();
  json.erase(position);
  return value;
}

void RefuseOthers(const Json& json, std::initializer_list<const char*> known) {
  std::string list;
  for (const char* const name : known) list += (list.empty() ? "" : ", ") + std::string(name);
  for (const auto& [name, value] : json.items()) {
    if (std::find(known.begin(), known.end(), name) == known.end()) {
      throw RequestError("web_error_member", {name, list});
    }
  }
}

/// Does the operation and returns the identifier of the widget that it was about.
using Operation = std::string (*)(HomeScreen& screen, Json json);

std::string Add(HomeScreen& screen, Json json) {
  const auto position = TakePosition(json);
  const bool isNamed = json.contains("id");
  PlacedWidget widget = WidgetOf(json);
  // Named on a screen of its own; here the name may be taken.
  if (!isNamed) widget.id.clear();
  return screen.add(std::move(widget), position);
}

std::string Remove(HomeScreen& screen, Json json) {
  RefuseOthers(json, {"id"});
  screen.remove(IdOf(json));
  return IdOf(json);
}

std::string Move(HomeScreen& screen, Json json) {
  const auto position = TakePosition(json);
  RefuseOthers(json, {"id"});
  if (!position) throw RequestError("web_error_position");
  screen.move(IdOf(json), *position);
  return IdOf(json);
}

std::string Set(HomeScreen& screen, Json json) {
  const std::string id = IdOf(json);
  RefuseOthers(json, {"id", "family", "theme", "place"});
  PlacedWidget widget;
  widget.id = id;
  const PlacedWidget* const placed = screen.find(id);
  if (placed != nullptr) {
    Json changed = ToJson(*placed);
    changed.update(json);
    widget = WidgetOf(changed);
  }
  // Throws where there is none.
  screen.replace(widget);
  return id;
}

const std::map<std::string, Operation> kOperations{
    {"add", Add}, {"move", Move}, {"remove", Remove}, {"set", Set}};

/// Its area, as a country may have a dozen towns of one name; absent where the name says it all.
/// Where one area has two of them, the coordinate as well.
std::optional<std::string> DetailOf(const widgets::IntentPlacemark& place,
                                    const std::vector<widgets::IntentPlacemark>& all) {
  const auto& address = place.postalAddress;
  const std::string area = address ? address->administrativeArea.value_or("") : "";
  const auto isSame = [&](const widgets::IntentPlacemark& one) {
    return one.name == place.name && one.postalAddress == address;
  };
  if (std::count_if(all.begin(), all.end(), isSame) > 1) {
    return area + (area.empty() ? "" : ", ") +
           platform::LocationUtils::latLonStringWithCoordinate(place.location.coordinate);
  }
  if (area.empty() || area == address->locality) return std::nullopt;
  return area;
}

Json ToJson(const widgets::LocationOptionsCollection& places) {
  Json sections = Json::array();
  for (const auto& section : places.sections) {
    Json items = Json::array();
    for (const widgets::IntentPlacemark& place : section.items) {
      Json item{{"name", place.name}};
      if (place.isMyLocation()) {
        item["isMyLocation"] = true;
      } else {
        item["latitude"] = place.location.coordinate.latitude;
        item["longitude"] = place.location.coordinate.longitude;
        if (const auto detail = DetailOf(place, section.items)) item["detail"] = *detail;
      }
      items.push_back(std::move(item));
    }
    sections.push_back({{"title", section.title}, {"items", std::move(items)}});
  }
  return {{"sections", std::move(sections)}};
}

}  // namespace

WebResponse HomeApi::answer(const WebRequest& request) {
  static constexpr std::string_view kChanges = "/api/home/";
  const bool isPost = request.method == "POST";
  if (request.path == "/api/home") {
    return isPost ? NotAllowed("GET, HEAD") : Answer(Shown(scheduler_, file_));
  }
  if (request.path == "/api/places") {
    const auto term = request.query.find("q");
    return isPost ? NotAllowed("GET, HEAD")
                  : Places(term == request.query.end() ? "" : term->second);
  }
  const std::string operation =
      request.path.starts_with(kChanges) ? request.path.substr(kChanges.size()) : "";
  if (!kOperations.contains(operation)) {
    return Answer({{"error", localizedString("web_page_missing", platform::kTableApp)}}, 404);
  }
  return isPost ? Change(operation, request.body) : NotAllowed("POST");
}

WebResponse HomeApi::Places(const std::string& given) {
  const std::string term = platform::stringByTrimmingWhitespace(given.substr(0, kLongestTerm));
  const auto known = std::find_if(searches_.begin(), searches_.end(),
                                  [&](const auto& one) { return one->term == term; });
  std::shared_ptr<Search> search = known == searches_.end() ? nullptr : *known;
  if (!search) {
    search = std::make_shared<Search>(Search{term, std::nullopt});
    searches_.push_back(search);
    if (searches_.size() > kKeptSearches) searches_.erase(searches_.begin());
    widgets::IntentHandler().provideLocationOptionsCollectionForLocationSelector(
        {}, term.empty() ? std::nullopt : std::optional(term),
        [search](widgets::LocationOptionsCollection places) {
          search->places = std::move(places);
        });
  }
  if (!search->places) return Answer({{"sections", Json::array()}}, 202);
  return Answer(ToJson(*search->places));
}

WebResponse HomeApi::Change(const std::string& operation, const std::string& body) try {
  const Json json = Parsed(body);
  std::string id;
  const HomeScreen screen =
      file_.update([&](HomeScreen& changed) { id = kOperations.at(operation)(changed, json); });
  changed_(screen);
  Json answer = Shown(scheduler_, file_);
  answer["id"] = id;
  return Answer(answer);
} catch (const HomeScreenError& error) {
  return Answer({{"error", error.what()}}, 400);
} catch (const RequestError& error) {
  return Answer({{"error", error.what()}}, 400);
}

}  // namespace lumenquest::host
