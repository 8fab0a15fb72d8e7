#include "adapters/asset_catalog.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "adapters/files.h"
#include "adapters/svg_pictures.h"

namespace lumenquest::adapters {

namespace {

namespace fs = std::filesystem;
using platform::ColorScheme;
using platform::UIColor;
using platform::UIImage;

/// Nothing else may become part of a file's name.
bool IsName(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z') || ('0' <= c && c <= '9') || c == '-' ||
           c == '_' || c == '.';
  });
}

}  // namespace

FileAssetCatalog::FileAssetCatalog(fs::path folder) : folder_(std::move(folder)) {}

std::shared_ptr<const UIImage> FileAssetCatalog::imageNamed(const std::string& name) {
  if (const auto known = images_.find(name); known != images_.end()) return known->second;
  const fs::path path = folder_ / (name + ".svg");
  std::error_code error;
  if (!IsName(name) || !fs::exists(path, error)) return nullptr;
  auto image =
      std::make_shared<const UIImage>(readSvgPicture(contentsOfResource(path), path.string()));
  images_.emplace(name, image);
  return image;
}

std::optional<UIColor> FileAssetCatalog::colorNamed(const std::string& name, ColorScheme scheme) {
  if (!colors_) colors_ = LoadColors();
  const auto found = colors_->find(name);
  if (found == colors_->end()) return std::nullopt;
  return scheme == ColorScheme::dark ? found->second.dark : found->second.light;
}

std::map<std::string, FileAssetCatalog::Colors> FileAssetCatalog::LoadColors() const {
  const fs::path path = folder_ / "colors.json";
  const auto fail = [&](const std::string& what) {
    throw std::runtime_error(path.string() + ": " + what);
  };
  nlohmann::json json;
  try {
    json = nlohmann::json::parse(contentsOfResource(path));
  } catch (const nlohmann::json::exception& exception) {
    fail(exception.what());
  }
  if (!json.is_object()) fail("must be an object of colours by name");
  std::map<std::string, Colors> colors;
  for (const auto& [name, value] : json.items()) {
    if (!IsName(name)) fail(nlohmann::json(name).dump() + " is no name: letters, digits, - and _");
    if (!value.is_object() || value.size() != 2) {
      fail("\"" + name + "\" must have \"light\" and \"dark\" and nothing else");
    }
    const auto component = [&, &colorName = name, &schemes = value](const char* scheme) {
      const auto found = schemes.find(scheme);
      const auto color = found != schemes.end() && found->is_string()
                             ? colorFromHex(found->template get_ref<const std::string&>())
                             : std::nullopt;
      if (!color) {
        fail("\"" + colorName + "\" needs a \"" + scheme + "\" of the form #rrggbb or #rrggbbaa");
      }
      return *color;
    };
    colors[name] = {component("light"), component("dark")};
  }
  return colors;
}

}  // namespace lumenquest::adapters
