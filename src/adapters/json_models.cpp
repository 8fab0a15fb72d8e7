#include "adapters/json_models.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

namespace lumenquest::adapters {

namespace {

using platform::AttributeType;
using platform::NSEntityDescription;
using platform::NSManagedObjectModel;
/// Entities and attributes keep the order in which the file lists them.
using Json = nlohmann::ordered_json;

std::string Name(const std::string& text) {
  const auto letterOrDigit = [](unsigned char c) { return c < 128 && std::isalnum(c) != 0; };
  if (text.empty() || !std::all_of(text.begin(), text.end(), letterOrDigit) ||
      std::isdigit(static_cast<unsigned char>(text.front())) != 0) {
    throw std::invalid_argument("\"" + text + "\" is no name: letters and digits, a letter first");
  }
  return text;
}

AttributeType Type(const std::string& text) {
  if (text == "string") return AttributeType::string;
  if (text == "number") return AttributeType::number;
  if (text == "integer") return AttributeType::integer;
  if (text == "date") return AttributeType::date;
  throw std::invalid_argument("\"" + text + "\" is no type: string, number, integer or date");
}

NSEntityDescription Entity(const Json& json) {
  NSEntityDescription entity;
  entity.name = Name(json.at("name").get<std::string>());
  entity.managedObjectClassName = json.value("class", "");
  // SQL knows no difference between upper and lower case.
  std::set<std::string> known;
  const auto unique = [&](const std::string& text) {
    std::string lower = Name(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (!known.insert(lower).second) throw std::invalid_argument("\"" + text + "\" stands twice");
    return text;
  };
  const Json attributes = json.value("attributes", Json::object());
  for (const auto& [attribute, type] : attributes.items()) {
    entity.attributes.push_back({unique(attribute), Type(type.get<std::string>()), false});
  }
  for (const Json& relationship : json.value("toMany", Json::array())) {
    entity.toMany.push_back(unique(relationship.get<std::string>()));
  }
  for (const Json& indexed : json.value("indexes", Json::array())) {
    const auto index = entity.indexOfAttribute(indexed.get<std::string>());
    if (!index) throw std::invalid_argument("an index of " + indexed.dump() + ", no attribute");
    entity.attributes[*index].isIndexed = true;
  }
  return entity;
}

std::shared_ptr<NSManagedObjectModel> Version(const std::string& name, const Json& json) {
  auto model = std::make_shared<NSManagedObjectModel>();
  model->name = name;
  model->version = json.at("version").get<int>();
  if (model->version < 1) throw std::invalid_argument("versions count from 1");
  for (const Json& entity : json.at("entities")) {
    model->entities.push_back(Entity(entity));
    const std::string& added = model->entities.back().name;
    if (model->entityNamed(added) != &model->entities.back()) {
      throw std::invalid_argument("\"" + added + "\" stands twice");
    }
  }
  return model;
}

}  // namespace

platform::Outcome<std::shared_ptr<const NSManagedObjectModel>> JsonModels::modelWithContentsOfURL(
    const std::filesystem::path& url) {
  const auto error = [&](int code, const char* key, const std::string& detail = {}) {
    return platform::NSError{"Model", code, key, {url.string()}, detail, {{"path", url.string()}}};
  };
  std::ifstream file(url);
  if (url.empty() || !file) return error(1, "store_error_no_model");
  try {
    const Json json = Json::parse(file);
    const auto name = Name(json.at("model").get<std::string>());
    const int current = json.at("current").get<int>();
    std::shared_ptr<NSManagedObjectModel> model;
    std::vector<std::shared_ptr<const NSManagedObjectModel>> earlier;
    for (const Json& versionJson : json.at("versions")) {
      auto version = Version(name, versionJson);
      if (version->version < current) earlier.push_back(version);
      if (version->version == current) model = version;
    }
    if (model == nullptr)
      return error(2, "store_error_model_unreadable", "its current version is missing");
    model->earlierVersions = std::move(earlier);
    return std::shared_ptr<const NSManagedObjectModel>(std::move(model));
  } catch (const std::exception& exception) {
    return error(3, "store_error_model_unreadable", exception.what());
  }
}

}  // namespace lumenquest::adapters
