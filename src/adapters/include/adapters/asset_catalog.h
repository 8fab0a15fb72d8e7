#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/drawing.h"

namespace lumenquest::adapters {

/// Colours and pictures from a folder: `colors.json`, {"name": {"light": "#rrggbb", "dark":
/// "#rrggbbaa"}}, and a `<name>.svg` for each picture. Names are letters, digits, - and _. Each
/// file is read when first asked for, and kept.
///
/// A file that is there but cannot be understood, or a missing colors.json, throws
/// std::runtime_error with the file and what would be right.
class FileAssetCatalog final : public platform::AssetCatalog {
 public:
  explicit FileAssetCatalog(std::filesystem::path folder);

  std::shared_ptr<const platform::UIImage> imageNamed(const std::string& name) override;
  std::optional<platform::UIColor> colorNamed(const std::string& name,
                                              platform::ColorScheme scheme) override;

 private:
  struct Colors {
    platform::UIColor light;
    platform::UIColor dark;
  };

  std::map<std::string, Colors> LoadColors() const;

  std::filesystem::path folder_;
  std::optional<std::map<std::string, Colors>> colors_;
  std::map<std::string, std::shared_ptr<const platform::UIImage>> images_;
};

}  // namespace lumenquest::adapters
